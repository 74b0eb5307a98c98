#include "app/qtcompat.h"

#include <QThreadPool>

/**
 * The toolkit paints a large area and scales a picture in parts, hands them to threads of this pool and waits
 * for them: where the unit has no room for a thread, for ever. Linked into a program, this stands in front of
 * the toolkit's own function, and each part is done where it is asked for.
 */
void QThreadPool::start(QtCompat::PoolWork functionToRun, int)
{
    QtCompat::run(functionToRun);
}
