/*
 * Pictures that a test can work out by hand. Source channel c of the raw pixel at (x, y), rows from the top,
 * is 8 bits   (40 c + 16 x + y) mod 256        16 bits   257 times that        32-bit float   that / 255 half
 * 1 / 2^c Block-compressed pictures are of one colour: BC1 to BC3 opaque red, BC4 red 200, BC5 red 200 and
 * green 100. In the other families the buffer holds zeros.
 */
#ifndef TESTPICTURE_H
#define TESTPICTURE_H

#include <vellor/engine.h>

uint64_t picture_size(uint32_t width, uint32_t height, uint32_t format);
void picture_fill(void* buffer, uint32_t width, uint32_t height, uint32_t format);

#endif
