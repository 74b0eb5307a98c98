#pragma once

#include <QString>

/** Why no window can be shown here, or nothing. The toolkit itself would abort the program. */
QString displayProblem();
