#pragma once

#include <QByteArrayView>

namespace tavrelon::text {

/// Whether the bytes are small enough to be opened as JSON: at most 64 MiB, a million values, and a thousand keys in an
/// object, far beyond every document of ours. What is larger would cost memory without end, or, since an object finds
/// its keys one by one, time.
bool isOpenableJson(QByteArrayView bytes);

}  // namespace tavrelon::text
