#include "jpeg_alone.h"

#include <cstdio>  // before the library's header, which needs FILE
#include <cstdlib>

#include <jpeglib.h>

namespace tavrelon::bench {

unsigned long encodeJpegAlone(const platform::Image& image, int quality) {
    jpeg_compress_struct compressor{};
    jpeg_error_mgr errors{};
    compressor.err = jpeg_std_error(&errors);
    jpeg_create_compress(&compressor);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&compressor, &bytes, &size);
    compressor.image_width = static_cast<JDIMENSION>(image.width);
    compressor.image_height = static_cast<JDIMENSION>(image.height);
    compressor.input_components = 4;
    compressor.in_color_space = JCS_EXT_BGRX;
    jpeg_set_defaults(&compressor);
    jpeg_set_quality(&compressor, quality, TRUE);
    jpeg_start_compress(&compressor, TRUE);
    while (compressor.next_scanline < compressor.image_height) {
        auto* row = reinterpret_cast<JSAMPROW>(const_cast<char*>(image.pixels.constData())) +
                    compressor.next_scanline * compressor.image_width * 4;
        jpeg_write_scanlines(&compressor, &row, 1);
    }
    jpeg_finish_compress(&compressor);
    jpeg_destroy_compress(&compressor);
    std::free(bytes);
    return size;
}

}  // namespace tavrelon::bench
