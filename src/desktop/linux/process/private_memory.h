#pragma once

namespace tavrelon::desktop {

/// Keeps what this process knows, the user's texts and keys, from other processes of the same user: none can trace it
/// or read its memory, and no crash writes it to a disk. Programs that it starts are as usual, but write no dump
/// either.
///
/// Some desktop portals refuse a program that they cannot look into. For whoever measures or debugs it, all but the
/// dumps stay as they are where the environment has TAVRELON_ALLOW_DEBUGGER; whoever sets that could start any other
/// program in its place.
void keepMemoryPrivate();

}  // namespace tavrelon::desktop
