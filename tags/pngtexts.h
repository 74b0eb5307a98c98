#pragma once

#include <QByteArray>

/**
 * A PNG file with its texts emptied. The toolkit decodes texts that nobody shows beside the pixels, and they
 * may unpack to a thousand times the size of the file. Empty where a part of the file claims to go on behind
 * the file's end: such a picture never loads, but the toolkit first takes the memory that the part claims.
 * What is no PNG comes back unchanged.
 */
QByteArray withoutPngTexts(const QByteArray& imageFile);
