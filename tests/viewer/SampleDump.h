#pragma once

#include "viewer/model/Recording.h"

#include <string>

/// A small dump, written by hand: two threads, two levels of scopes, an error that is raised and
/// dismissed, a state, and names with what stands between names in a line.
extern const char sampleDump[];

/// The dump in a text, read as the program does.
Dump ReadText(const std::string& text);

/// What the program makes of a dump, or of a text with one.
Recordings RecordingsOf(Dump dump, const RecordFilter& filter = {});
Recordings RecordingsOf(const std::string& text);

/// Two lines of a dump: an event on a thread at a place such as "Pump.Drain", or at the function
/// "f" of the class C. Names make ids; that of a letter is the letter.
std::string RecordLines(std::int64_t microseconds, std::int32_t kind, const std::string& place,
                        std::int32_t thread = 7);

/// A dump told in short: "+a" enters the function a, "-a" leaves it, "." is a timing point, "2:"
/// turns to thread 2, "~" is a record still being written. Each takes a microsecond, from 0 on.
Dump DumpOf(const std::string& story);

/// The same in words, for more than letters: "2+Pump.Drain" enters that on thread 2, "2-Pump.Drain"
/// leaves it, "." makes a mark there, "!" and "^" raise an error and "*" dismisses one, "/"
/// destroys an object, "<" and ">" join and part logs.
Dump DumpOfPlaces(const std::string& story);

/// Timelines told in short: "7: a0-5 >p1 >b2-3?" is thread 7 with a scope from 0 to 5 and in it the
/// point p and another scope, whose end is lost.
std::string Shape(const std::vector<Timeline>& timelines);
