/// @file
/// Packing and unpacking of raw byte records in GVariants: the form in which every structured payload of
/// com.zarn.linux.ipod crosses the bus, a variant "v" that holds a byte array "ay".
///
/// The functions keep no state: any thread may call them. None blocks, none reports an error.
#pragma once

#include <glib.h>

#include <vector>

#pragma GCC visibility push(default)

/// Packs @p length bytes from @p data into a new "v" holding an "ay".
///
/// @param data    the bytes; not read when @p length is 0 or below
/// @param length  number of bytes; 0 or below produces an empty "ay"
/// @return a floating reference, meant to be passed straight to a generated call, which consumes it
GVariant* gvariant_data_build(void* data, int length);

/// Unpacks a "v" holding an "ay" into memory of the caller, without a bounds check: the buffer must hold all that the
/// sender may send, up to 65,536 bytes. The position is a 16-bit counter, so byte n lands at `dest[n mod 65536]`.
///
/// @param dest   memory of the caller; not cleared first, bytes beyond those received are unchanged
/// @param value  not released; a null pointer, or a value of another type, leaves @p dest unchanged
void gvariant_data_extract(void* dest, GVariant* value);

/// Unpacks a "v" holding an "ay" onto the end of a vector, without limit.
///
/// @param dest   not cleared first
/// @param value  not released; a null pointer, or a value of another type, leaves @p dest unchanged
void gvariant_data_extract(std::vector<unsigned char>& dest, GVariant* value);

#pragma GCC visibility pop
