#include "fuzz/tagreading.h"
#include "tags/qmp3parser.h"

/** The input is a media file. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const TagReading<QMP3Parser> reading(QTagParser::Mp3, &NaiveReader::readMp3);
    reading.check(Harness::bytesOf(data, size));
    return 0;
}
