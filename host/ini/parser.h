#pragma once

#include <cstdio>

#include "ini/document.h"

/// Reads INI files into documents.
///
///   [section]     white space inside the brackets is dropped, anything behind "]" ignored
///   key=value     white space around both is dropped; quotes around the value as the flags say
///   ; comment     on a line of its own only; a semicolon behind a value belongs to it
///
/// Any other line is malformed, a blank one included: the first such line is recorded and parsing goes on. Lines end
/// with LF, CR, CR LF, LF CR or a zero byte. The text is taken byte by byte (UTF-8, with or without a byte-order mark).
///
/// Keys before the first header are ignored, but with colonSeparates they make a section "(null)" without a line.
///
/// When the file has been read, continuation keys that follow one another, "Text Line1", "Text Line2", ..., are joined
/// into one key "Text" with the values of all, and the line and quote of the first. It stays beside a key "Text".
namespace nIni {

inline constexpr int wideText = -3;  ///< the file begins with a UTF-16 or UTF-32 byte-order mark
inline constexpr int outOfMemory = -12;
inline constexpr int fileNotFound = -22;
inline constexpr int fileNotOpened = -5001;  ///< it exists
inline constexpr int fileNotRead = -5002;

/// Replaces the document's sections by those of the file. Gives 0, also when there are malformed lines, and keeps the
/// file's path and time; otherwise one of the codes above. The sections then are what had been read so far or, when
/// the file was refused before its first line, what they were. Time and memory grow in proportion to the file.
int parseFile(tDocument& document, const wchar_t* widePath) noexcept;

/// The same, but path and time are not kept: asking for the time takes longer than opening and reading a small file.
int parseContent(tDocument& document, const wchar_t* widePath) noexcept;

/// What both do with the open file, which stands at its beginning. Throws std::bad_alloc.
int parseStream(tDocument& document, std::FILE* file);

}  // namespace nIni
