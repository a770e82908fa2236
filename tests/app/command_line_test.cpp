#include "app/command_line.h"

#include <gtest/gtest.h>

#include "support/test_support.h"

namespace {

using Action = CommandLine::Action;

TEST(CommandLine, NoArgumentsRunTheProgram) {
    const CommandLine line = CommandLine::parse({});
    EXPECT_EQ(line.action(), Action::run);
    EXPECT_EQ(line.text(), QString());
    EXPECT_EQ(line.exitStatus(), 0);
}

TEST(CommandLine, HelpAndVersionAnswerAndSucceed) {
    for (const char* help : {"--help", "-h"}) {
        const CommandLine line = CommandLine::parse({QLatin1String(help)});
        EXPECT_EQ(line.action(), Action::showHelp);
        EXPECT_TRUE(line.text().startsWith(QStringLiteral("Usage: quillix")));
        EXPECT_TRUE(line.text().contains(QStringLiteral("--version")));
        EXPECT_EQ(line.exitStatus(), 0);
    }
    const CommandLine version = CommandLine::parse({QStringLiteral("--version")});
    EXPECT_EQ(version.action(), Action::showVersion);
    EXPECT_EQ(version.text(), QStringLiteral("Quillix " QUILLIX_VERSION "\n"));
    EXPECT_EQ(version.exitStatus(), 0);
}

TEST(CommandLine, AnythingElseIsRefusedWithOneLineNamingIt) {
    const QList<QStringList> refused{{QStringLiteral("--frobnicate")},
                                     {QStringLiteral("-v")},
                                     {QStringLiteral("photo.png")},
                                     {QStringLiteral("--help"), QStringLiteral("--bogus")},
                                     {QStringLiteral("--")}};
    for (const QStringList& arguments : refused) {
        const CommandLine line = CommandLine::parse(arguments);
        EXPECT_EQ(line.action(), Action::refuse) << arguments.join(QLatin1Char(' ')).toStdString();
        EXPECT_EQ(line.exitStatus(), 2);
        EXPECT_EQ(line.text().count(QLatin1Char('\n')), 1);
        EXPECT_TRUE(line.text().endsWith(QLatin1Char('\n')));
        EXPECT_TRUE(line.text().contains(QLatin1Char('\'') + arguments.last() + QLatin1Char('\'')))
            << line.text().toStdString();
    }
}

}  // namespace
