#pragma once

#include "xml/MXmlMarkup.h"
#include <string>

/// The rule that the state of a document breaks, in words, or empty. The rules hold in every state
/// that loading and editing can bring about, of ill-formed documents too.
std::string BrokenRule(const MXmlMarkup& document);

/// Whether the document's record is as long as the text. Holds while `AllHaveStartTags`.
bool SpansText(const MXmlMarkup& document);

/// Whether no element has a start tag of length 0. Setting an attribute whose old value reaches far
/// behind its tag can make one, and what is shifted then stops at it.
bool AllHaveStartTags(const MXmlMarkup& document);

/// Where the index differs from that of a fresh parse of the text, taken literally, or the current
/// node is not where the position says; or empty. Left aside are the numbers of records, deleted
/// ones, and the start of the document's. Holds while nothing ill-formed was loaded or added.
std::string StaleIndex(const MXmlMarkup& document);
