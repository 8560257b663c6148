#include "tests/kit/TestMain.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

namespace support {

namespace {

/// Returns the registered classes by name, such as "VehicleFrame" for VehicleFrameTest. This is a
/// function because the classes register before main() in unspecified order.
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

/// Runs one test class of the folder: the first argument is its name, the others are passed to Qt
/// Test.
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
