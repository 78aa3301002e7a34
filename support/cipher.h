// The password cipher's byte primitives: repeating-key XOR and base64. Plain C++ without any toolkit, so that the
// driver's filter reads passwords with the very code that wrote them. An obfuscation, not encryption: the key is public
// and one routine both scrambles and unscrambles. No state; reentrant.
//
// All three take the input bytes, their count, the output buffer, where to store the produced count, and the buffer's
// capacity in bytes; none writes a terminating NUL. They answer kXspOk or one of the codes below.
#pragma once

#include "support/export.h"

#include <stdint.h>

enum {
  kXspOk = 0,
  kXspNullArgument = -1,
  kXspBadLength = -2,
  kXspBufferTooSmall = -3
};

// The key: the ASCII text "tovq", no terminator. Byte i of a text is XORed with key byte i mod 4.
DIRECTFAX_EXPORT uint8_t const xspkey[4];
// The alphabet of RFC 4648, without the pad character '='.
DIRECTFAX_EXPORT char const B64CHR[64];
// The inverse of B64CHR by 7-bit character code; 0xFF for every other character, '=' included.
DIRECTFAX_EXPORT uint8_t const B64TBL[128];

// XORs in with the key; *out_length becomes in_length. kXspBadLength for a length or capacity below 1.
// kXspBufferTooSmall: the whole groups of 4 bytes that fit are written and *out_length is their count.
// out may be in itself.
DIRECTFAX_EXPORT int32_t XspEncrypt(uint8_t const *in, int32_t in_length, uint8_t *out, uint32_t *out_length,
                                    int32_t capacity);

// Bytes -> base64 characters, 4 for every 3 bytes begun, no line breaks. kXspBufferTooSmall with *out_length the size
// needed; capacity 0 (out may then be null) asks for it. kXspBadLength for in_length below 1 or capacity below 0.
DIRECTFAX_EXPORT int32_t XspBinToB64(uint8_t const *in, int32_t in_length, uint8_t *out, uint32_t *out_length,
                                     int32_t capacity);

// Base64 characters -> bytes. in must be followed by a NUL: the decoder reads up to it, not only up to in_length. White
// space is skipped but counts as length. kXspBadLength for in_length below 1 or no multiple of 4, or capacity below 0;
// kXspBufferTooSmall with *out_length the size needed, as above. Does not validate: any byte outside the alphabet
// contributes 0xFF. Never writes beyond capacity: what a malformed text would decode to there is dropped.
DIRECTFAX_EXPORT int32_t XspB64ToBin(uint8_t const *in, int32_t in_length, uint8_t *out, uint32_t *out_length,
                                     int32_t capacity);
