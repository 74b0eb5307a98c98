#pragma once

#include <QByteArray>
#include <QList>

/** Image files of every kind that is decoded row by row, each of some hundred bytes. */
QList<QByteArray> pictureSeeds();
