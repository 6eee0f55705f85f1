// SPDX-License-Identifier: MIT
// What libFuzzer calls, for the target that the function ORV_FUZZ_TARGET gives.
#include "Surroundings.h"
#include "Targets.h"

#include <QTextStream>

#include <cstdlib>

namespace {

const orvfuzz::Target& theTarget() {
    static const orvfuzz::Target target = orvfuzz::ORV_FUZZ_TARGET();
    return target;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    Q_UNUSED(argc)
    // It lives as long as the process, which libFuzzer ends without unwinding.
    static auto* surroundings = new orvfuzz::Surroundings(theTarget().hasWidgets, (*argv)[0]);
    Q_UNUSED(surroundings)
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    try {
        theTarget().run({data, qsizetype(size)});
    } catch (const std::exception& broken) {
        QTextStream(stderr) << "\nFOUND: " << QString::fromUtf8(broken.what()) << Qt::endl;
        std::abort();
    }
    return 0;
}
