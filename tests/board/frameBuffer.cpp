#include "frameBuffer.h"

#include <dlfcn.h>
#include <linux/fb.h>
#include <sys/ioctl.h>

#include <cstdarg>

namespace {

void describeScreen(fb_var_screeninfo& info)
{
    info = {};
    info.xres = info.xres_virtual = FrameBuffer::Width;
    info.yres = info.yres_virtual = FrameBuffer::Height;
    info.bits_per_pixel = 32;
    info.red = {16, 8, 0};
    info.green = {8, 8, 0};
    info.blue = {0, 8, 0};
    info.width = FrameBuffer::WidthMm;
    info.height = FrameBuffer::HeightMm;
}

void describeMemory(fb_fix_screeninfo& info)
{
    info = {};
    info.smem_len = FrameBuffer::Bytes;
    info.line_length = FrameBuffer::Width * 4;
    info.type = FB_TYPE_PACKED_PIXELS;
    info.visual = FB_VISUAL_TRUECOLOR;
}

}  // namespace

/// Goes before the C library's, in this program and in the libraries that it loads.
extern "C" __attribute__((visibility("default"))) int ioctl(int file, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    switch (request) {
    case FBIOGET_VSCREENINFO:
        describeScreen(*static_cast<fb_var_screeninfo*>(argument));
        return 0;
    case FBIOGET_FSCREENINFO:
        describeMemory(*static_cast<fb_fix_screeninfo*>(argument));
        return 0;
    case FBIOPUT_VSCREENINFO:
    case FBIOBLANK:
        return 0;
    default:
        break;
    }
    using Ioctl = int (*)(int, unsigned long, ...);
    static const auto next = reinterpret_cast<Ioctl>(dlsym(RTLD_NEXT, "ioctl"));
    return next(file, request, argument);
}
