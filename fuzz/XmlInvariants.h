#pragma once

#include "xml/MXmlMarkup.h"
#include <string>

/// The rule that the state of a document breaks, in words, or empty. The rules hold in every state
/// that loading and editing can bring about, of ill-formed documents too.
std::string BrokenRule(const MXmlMarkup& document);

/// Where the index differs from one made afresh from the document's text, or empty. Holds while
/// nothing ill-formed was loaded or added.
std::string StaleIndex(const MXmlMarkup& document);
