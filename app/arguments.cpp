#include "app/arguments.h"

#include "app/version.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string_view>

namespace {

constexpr int errorsOnly = 4;
constexpr int silence = 5;

constexpr char help[] =
    "Usage: vireo [LEVEL] [Qt options]\n"
    "Shows the amplifier's front panel and listens on TCP port 5000 for its supervisor.\n"
    "\n"
    "LEVEL is the lowest level that is printed on standard error: 0 everything, 1 all but\n"
    "dumps, 2 information, 3 warnings, 4 errors (the default), 5 nothing.\n"
    "  -h, --help  prints this\n"
    "  --version   prints the version\n"
    "\n"
    "See vireo(1).\n";

void printHelp()
{
    std::fputs(help, stdout);
}

void printVersion()
{
    std::printf("vireo %s\n", vireoVersion);
}

struct Question {
    std::string_view word;
    void (*answer)();
};
constexpr Question questions[] = {
    {"--help", printHelp},
    {"-h", printHelp},
    {"--version", printVersion},
};
static_assert(std::size(questions) == 3, "one row a word");

std::string_view ownWord(int argc, char** argv)
{
    return argc > 1 ? argv[1] : std::string_view();
}

} // namespace

int Arguments::threshold(int argc, char** argv)
{
    if (argc == 1)
        return errorsOnly;
    return int(std::clamp(std::strtol(argv[1], nullptr, 10), long(INT_MIN), long(silence)));
}

std::optional<int> Arguments::answerQuestion(int argc, char** argv)
{
    const std::string_view word = ownWord(argc, argv);
    for (const Question& question : questions) {
        if (word != question.word)
            continue;
        question.answer();
        return EXIT_SUCCESS;
    }
    return std::nullopt;
}

std::optional<int> Arguments::answer(int argc, char** argv)
{
    constexpr int usageError = 2;
    if (const auto status = answerQuestion(argc, argv))
        return status;
    const std::string_view word = ownWord(argc, argv);
    if (word.substr(0, 2) != "--")
        return std::nullopt;
    std::fprintf(stderr, "vireo: %s is no level and no option; see vireo --help\n", argv[1]);
    return usageError;
}
