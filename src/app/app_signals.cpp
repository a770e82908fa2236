#include "app/app_signals.h"

AppSignals& AppSignals::instance() {
    static AppSignals* hub = new AppSignals();
    return *hub;
}
