// The commands, each a function that answers the exit status and throws Failure.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace drives {

/// What every command has.
struct Common {
    bool json = false;  ///< output for programs
    bool force = false; ///< don't ask before data is lost
};

int listDrives(const Common& common);
/// All drives when `name` is empty.
int showDrives(const Common& common, const std::string& name);

struct NewDrive {
    std::string name;
    std::string kind = "DVD+RW"; ///< or "none"
    std::string capacity;        ///< empty: as usual for the kind
    std::string vendor = "Virtual";
    std::string product; ///< empty: the name
    std::string firmware = "1.00";
};
int createDrive(const Common& common, const NewDrive& drive);
int deleteDrive(const Common& common, const std::string& name);

int openTray(const Common& common, const std::string& name);
int closeTray(const Common& common, const std::string& name);
struct Ejecting {
    std::string name;
    std::string takeTo;   ///< a folder that the medium moves to; empty: it stays on the tray
    bool discard = false; ///< the medium goes for good
};
int ejectMedium(const Common& common, const Ejecting& ejecting);

struct Inserting {
    std::string name;
    std::string medium;
    std::string kind; ///< empty: what the files say
};
int insertMedium(const Common& common, const Inserting& inserting);
struct NewMedium {
    std::string kind;
    std::string file;
    std::string capacity;
};
int makeBlankMedium(const Common& common, const NewMedium& medium);
int exportMedium(const Common& common, const std::string& name, const std::string& folder);

/// All drives with media when `name` is empty.
int verifyMedia(const Common& common, const std::string& name);
int eraseMedium(const Common& common, const std::string& name, bool complete);

} // namespace drives
