#include "app/diagnostics.h"

#include <cstdio>

void printDiagnostic(const QString& line) {
    const QByteArray utf8 = line.toUtf8();
    std::fwrite(utf8.constData(), 1, static_cast<size_t>(utf8.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}
