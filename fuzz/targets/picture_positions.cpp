// Positions in the Exif data of pictures.

#include "common/metadata/picture_position.h"
#include "fuzz/fuzz_case.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray picture = fuzz_bytes(data, size);
    may_hold_position(picture);
    picture_place_of(picture);
    return 0;
}
