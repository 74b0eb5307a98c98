#include "fuzz/tagreading.h"
#include "tags/qoggparser.h"

/** The input is a media file. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const TagReading<QOggParser> reading(QTagParser::Ogg, &NaiveReader::readOgg);
    reading.check(Harness::bytesOf(data, size));
    return 0;
}
