// The kinds of pictures that ImageMagick reads for the toolkit, by name. The toolkit asks it for the list as soon as a
// program starts, and it loads every one of its modules for the answer, more than a hundred: a sixth of what an empty
// window has the processor do (callgrind). The names that pictures go by are written down here instead. What a picture is
// made of is still found out by its contents, and modules are loaded then.
#import <Foundation/Foundation.h>

#include "platform/gnustep/repair.h"

namespace {

fax::Repair<NSArray *()> file_types{
    "GSImageMagickImageRep", "imageUnfilteredFileTypes",
    [](id, SEL) -> NSArray * {
      return [NSArray arrayWithObjects:@"avif", @"bmp", @"cur", @"dcm", @"dcx", @"dds", @"dpx", @"exr", @"fits", @"gif",
                                       @"heic", @"heif", @"icns", @"ico", @"j2k", @"jng", @"jp2", @"jpeg", @"jpg",
                                       @"mng", @"pam", @"pbm", @"pcx", @"pfm", @"pgm", @"pict", @"png", @"pnm",
                                       @"ppm", @"psd", @"ras", @"rgb", @"sgi", @"sun", @"svg", @"svgz", @"tga",
                                       @"tif", @"tiff", @"wbmp", @"webp", @"xbm", @"xcf", @"xpm", @"xwd", nil];
    },
    fax::MethodOf::class_object};

}  // namespace
