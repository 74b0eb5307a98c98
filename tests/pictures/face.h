#pragma once

#include <QString>

/** The version that the face of the screens' texts gives itself, as "15.0.01"; empty where it names none. */
QString faceVersion();
