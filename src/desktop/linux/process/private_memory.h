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

/// While it lives, other processes of the user can see which program this is, and look into its memory: some grant
/// rights by the program's path, which one that keeps to itself hides too. For a moment at the start, before anything
/// is known that must stay here.
class ProgramInSight {
 public:
    ProgramInSight();
    ProgramInSight(const ProgramInSight&) = delete;
    ProgramInSight& operator=(const ProgramInSight&) = delete;
    ~ProgramInSight();

 private:
    bool wasHidden_;
};

}  // namespace tavrelon::desktop
