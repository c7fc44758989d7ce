// Feeds the randomized suite's operation engine from libFuzzer's bytes: every
// byte picks an operation or one of its arguments. A broken invariant aborts, so
// that libFuzzer keeps the input; AddressSanitizer reports the rest.

#include "OperationEngine.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLoggingCategory>

#include <cstdlib>

namespace {
// Inputs longer than this are cut: a long sequence finds nothing a short one
// would not, and slows every execution down.
const int kMaxSteps = 300;
} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static int appArgc = *argc;
    static QCoreApplication app(appArgc, *argv);
    // The comparison files are broken on purpose; their warnings are noise here.
    QLoggingCategory::setFilterRules(QStringLiteral("*.warning=false\njs.*=false\nqml.*=false"));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ByteChoices choices(data, size);
    OperationEngine engine(choices, QStringLiteral(XOLA_TEST_DATA_DIR));
    while (!choices.exhausted() && engine.steps() < kMaxSteps) {
        if (!engine.step())
            break;
    }
    if (!engine.finishOrReport())
        std::abort();
    return 0;
}
