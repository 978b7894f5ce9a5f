// The USB tests run with umockdev's preload library, which puts a fake sysfs
// and fake device nodes under libusb. A run that started without it starts
// itself again with it, so that ctest, a debugger and a plain shell all run
// the tests the same way.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace {

constexpr const char* kPreload = "libumockdev-preload.so.0";

bool preloaded() {
    const char* preload = std::getenv("LD_PRELOAD");
    return preload && std::strstr(preload, "libumockdev-preload") != nullptr;
}

void append(const char* name, const std::string& item, char separator) {
    const char* old = std::getenv(name);
    std::string value = old && *old ? std::string(old) + separator + item : item;
    setenv(name, value.c_str(), 1);
}

} // namespace

int main(int argc, char** argv) {
    if (!preloaded()) {
        if (std::getenv("QUORVEL_UMOCKDEV_REEXEC")) {
            std::fprintf(stderr, "the umockdev preload library did not load\n");
            return 1;
        }
        setenv("QUORVEL_UMOCKDEV_REEXEC", "1", 1);
        append("LD_PRELOAD", kPreload, ' ');
        // Under AddressSanitizer its runtime would otherwise insist on
        // coming first in the list of preloaded libraries.
        append("ASAN_OPTIONS", "verify_asan_link_order=0", ':');
        execv("/proc/self/exe", argv);
        std::perror("cannot start again under umockdev");
        return 1;
    }
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
