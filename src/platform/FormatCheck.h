// Whether a printf format from outside the module (a text of the host's
// resource library) can be given the arguments the module passes.
#pragma once

namespace qv {

// True when `format` holds exactly one conversion per letter of `kinds`, in
// that order: 'd' for an int (%d %i %u %x %X %o %c), 's' for a text (%s).
// Flags, a width and a precision written as digits are allowed; '*', '$',
// length modifiers and every other conversion (%n, %p, %f ...) are not.
// "%%" is a plain percent sign.
bool FormatTakes(const char* format, const char* kinds);

} // namespace qv
