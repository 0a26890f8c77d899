#pragma once

#include "desktop/atspi/atspi_calls.h"

namespace tavrelon::desktop::atspi {

/// The element whose own text has the caret, going down from a field that the user sees as one. Browsers have an
/// element for each paragraph of rich text and one U+FFFC for each in the text of the field. Stays at the field where
/// the selection goes over several of them, and where the caret cannot be followed. Main thread.
ObjectReference innermostText(const ObjectReference& field, const Toolkit& toolkit, AtspiCalls& calls);

}  // namespace tavrelon::desktop::atspi
