#include "fuzz/tagreading.h"
#include "tags/qflacparser.h"

/** The input is a media file. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const TagReading<QFLACparser> reading(QTagParser::Flac, &NaiveReader::readFlac);
    reading.check(Harness::bytesOf(data, size));
    return 0;
}
