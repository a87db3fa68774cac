#pragma once

#include <cstdio>

#include "ini/document.h"

/// Reads INI files into documents.
///
///   [section]     white space inside the brackets is dropped, anything after "]" ignored
///   key=value     white space around both is dropped; the flags say which quotes around the value are stripped
///   ; comment     only on a line of its own; a semicolon after a value belongs to it
///
/// Any other line is malformed, even a blank one: the first such line is recorded and parsing continues. Lines end with
/// LF, CR, CR LF, LF CR or a zero byte. The text is read byte by byte (UTF-8, with or without a byte-order mark).
///
/// Keys before the first header are ignored, but with colonSeparates they form a section "(null)" without a line.
///
/// At the end of the file, continuation keys that follow one another, "Text Line1", "Text Line2", ..., are joined into
/// one key "Text" with the values of all, and the line and quote of the first. A plain key "Text" is kept beside it.
namespace nIni {

inline constexpr int wideText = -3;  ///< the file begins with a UTF-16 or UTF-32 byte-order mark
inline constexpr int outOfMemory = -12;
inline constexpr int fileNotFound = -22;
inline constexpr int fileNotOpened = -5001;  ///< it exists
inline constexpr int fileNotRead = -5002;

/// Replaces the document's sections by those of the file and records the file's path and time. Returns 0, even if there
/// are malformed lines, or one of the codes above. After a failure the sections are those read so far or, if the file
/// was refused before its first line, unchanged. Time and memory are proportional to the file's size.
int parseFile(tDocument& document, const wchar_t* widePath) noexcept;

/// The same without recording path and time: asking for the time takes longer than opening and reading a small file.
int parseContent(tDocument& document, const wchar_t* widePath) noexcept;

/// The part of both that reads the open file. Requires: the file is at its beginning. Throws std::bad_alloc.
int parseStream(tDocument& document, std::FILE* file);

}  // namespace nIni
