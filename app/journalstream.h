#pragma once

/**
 * Whether standard error is the journal's stream, which the service manager names in JOURNAL_STREAM. There a
 * line begins with its priority, which the journal takes off: "<3>" for an error. Anywhere else none does.
 */
bool standardErrorIsJournal();
