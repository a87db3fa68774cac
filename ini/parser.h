#pragma once

#include "ini/document.h"

/// Reads INI files into documents.
///
///   [section]     white space inside the brackets is dropped, anything behind "]" ignored
///   key=value     white space around both is dropped; quotes around the value as the flags say
///   ; comment     on a line of its own only; a semicolon behind a value belongs to it
///
/// Any other line is malformed, a blank one included: the first such line is recorded and parsing goes on. Lines end
/// with LF, CR, CR LF, LF CR or a zero byte. Keys "Text Line1", "Text Line2", ... that follow one another are joined
/// into one key "Text". The text is taken byte by byte (UTF-8, with or without a byte-order mark).
namespace nIni {

inline constexpr int wideText = -3;  ///< the file begins with a UTF-16 or UTF-32 byte-order mark
inline constexpr int outOfMemory = -12;
inline constexpr int fileNotFound = -22;
inline constexpr int fileNotOpened = -5001;  ///< it exists
inline constexpr int fileNotRead = -5002;

/// Replaces the document's sections by those of the file. 0 on success, also with malformed lines; otherwise one of
/// the codes above, and the sections are whatever had been read. Time and memory grow with the size of the file.
int parseFile(tDocument& document, const wchar_t* widePath) noexcept;

}  // namespace nIni
