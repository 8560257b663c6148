#include "tests/support/TestMain.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

namespace support {

namespace {

/// By name, such as "VehicleFrame" for VehicleFrameTest. A function, since the classes register
/// before main() and in no fixed order.
std::map<std::string, TestRun>& testClasses()
{
    static std::map<std::string, TestRun> classes;
    return classes;
}

std::string withoutSuffix(std::string className)
{
    return className.substr(0, className.rfind("Test"));
}

} // namespace

TestRegistration::TestRegistration(const char* className, TestRun run)
{
    testClasses()[withoutSuffix(className)] = run;
}

} // namespace support

/// Runs one test class of the folder: the first argument names it, the others are Qt Test's.
int main(int argc, char** argv)
{
    const auto& classes = support::testClasses();
    const auto chosen = argc > 1 ? classes.find(argv[1]) : classes.end();
    if (chosen == classes.end()) {
        std::fprintf(stderr, "Usage: %s CLASS [OPTION or FUNCTION of Qt Test...]\nClasses:\n",
                     argv[0]);
        for (const auto& [name, run] : classes) {
            std::fprintf(stderr, "  %s\n", name.c_str());
        }
        return EXIT_FAILURE;
    }
    argv[1] = argv[0];
    return chosen->second(argc - 1, argv + 1);
}
