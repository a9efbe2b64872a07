#include "target.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLoggingCategory>

#include <cstdio>
#include <cstdlib>

int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    // Qt's own event dispatcher: a posted event costs it no call to the system.
    qputenv("QT_NO_GLIB", "1");
    // Left to the end of the process: the fuzzer leaves it by exit().
    static const auto *const application = new QCoreApplication(*argc, *argv);
    Q_UNUSED(application)
    QLoggingCategory::setFilterRules(QStringLiteral("*=false"));
    return 0;
}

void fuzz::check(bool holds, const char *rule)
{
    if (holds)
        return;
    std::fprintf(stderr, "fuzz: this does not hold: %s\n", rule);
    std::abort();
}
