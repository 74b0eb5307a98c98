#pragma once

#include <optional>

/** The panel's own word on its command line: the print threshold, or a question that ends the program early.
 */
namespace Arguments {

/** The print threshold: a decimal number, 5 at most; text counts as 0, which prints everything; none as 4. */
int threshold(int argc, char** argv);

/**
 * Answers `--help`, `-h` and `--version` on standard output, and complains of any other word that begins with
 * two dashes on standard error. The status to end with; nothing where the panel is to start.
 */
std::optional<int> answer(int argc, char** argv);

/** The same of the questions alone, which are to be answered where there is no display, too: the toolkit's
 * own options still stand among the words then. */
std::optional<int> answerQuestion(int argc, char** argv);

} // namespace Arguments
