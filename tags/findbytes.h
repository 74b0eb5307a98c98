#pragma once

#include <QtGlobal>

#include <cstring>
#include <string_view>

/** Where `text` first stands in `bytes`; negative where it does not. Takes the same time whatever they hold.
 */
inline qint64 findBytes(std::string_view bytes, std::string_view text)
{
    const void* found = memmem(bytes.data(), bytes.size(), text.data(), text.size());
    return found ? static_cast<const char*>(found) - bytes.data() : -1;
}
