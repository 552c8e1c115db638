// The command line of disc-drives: options, help and exit statuses.
#include "CommandLine.hpp"
#include "Commands.hpp"
#include "Console.hpp"
#include "Describe.hpp"
#include "Failure.hpp"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <functional>

namespace drives {
namespace {

constexpr int failed = 1, misused = 2, interruptedStatus = 130;

constexpr char generalHelp[] = R"(
Examples:
  disc-drives list
  disc-drives create burner --kind CD-RW --capacity 650MB
  disc-drives insert burner holiday.iso
  disc-drives --json show burner

The drives are folders in the folder that DISC_DRIVES names, else in
$XDG_DATA_HOME/disc-drives, else in ~/.local/share/disc-drives. Recorders are
found beside them unless DISC_PHYSICAL is 0; with DISC_DRIVES only if it is 1.

Exit status: 0 done, 1 failed (one sentence on standard error says why),
2 wrong arguments, 130 interrupted.)";

/// Everything that arguments can set.
struct Given {
    Common common;
    std::string name, folder;
    NewDrive drive;
    Ejecting ejecting;
    Inserting inserting;
    NewMedium medium;
    bool complete = false;
};

class CommandSet {
  public:
    CommandSet(CLI::App& app, Given& given) : app_(app), given_(given) {}

    CLI::App* add(const char* name, const char* purpose, const char* examples, std::function<int()> run) {
        CLI::App* command = app_.add_subcommand(name, purpose);
        command->footer(std::string("\nExamples:\n") + examples);
        command->callback([this, run = std::move(run)] { run_ = run; });
        return command;
    }
    CLI::App* onDrive(const char* name, const char* purpose, const char* examples, std::function<int()> run) {
        CLI::App* command = add(name, purpose, examples, std::move(run));
        command->add_option("NAME", given_.name, "The drive, as list names it")->required();
        return command;
    }
    void mayLose(CLI::App* command) {
        command->add_flag("-f,--force", given_.common.force, "Do not ask before data is lost");
    }
    int run() const { return run_ ? run_() : misused; }

  private:
    CLI::App& app_;
    Given& given_;
    std::function<int()> run_;
};

void addDriveCommands(CommandSet& set, Given& given) {
    set.add("list", "Show all drives, one line each", "  disc-drives list\n  disc-drives --json list",
            [&] { return listDrives(given.common); });
    set.add("show", "Show all that is known of a drive and its medium",
            "  disc-drives show\n"
            "  disc-drives show drive-1",
            [&] { return showDrives(given.common, given.name); })
        ->add_option("NAME", given.name, "The drive, as list names it; all drives when left out");

    CLI::App* create = set.add("create", "Make a virtual drive with a blank medium in it",
                               "  disc-drives create burner\n"
                               "  disc-drives create old-one --kind CD-R --capacity 650MB --vendor ACME\n"
                               "  disc-drives create empty --kind none",
                               [&] { return createDrive(given.common, given.drive); });
    create->add_option("NAME", given.drive.name, "The new drive's name, and its folder's")->required();
    create->add_option("-k,--kind", given.drive.kind, "Kind of the medium, or none")->capture_default_str();
    create->add_option("-c,--capacity", given.drive.capacity,
                       "Of the medium: 700MB, 4.7GB, 650MiB, or blocks of 2048 bytes (default: as usual)");
    create->add_option("--vendor", given.drive.vendor, "Who made the drive")->capture_default_str();
    create->add_option("--product", given.drive.product, "What it is called (default: NAME)");
    create->add_option("--firmware", given.drive.firmware, "Its revision")->capture_default_str();

    set.mayLose(set.onDrive("delete", "Delete a virtual drive and its medium",
                            "  disc-drives delete burner\n  disc-drives delete burner --force",
                            [&] { return deleteDrive(given.common, given.name); }));
}

void addTrayCommands(CommandSet& set, Given& given) {
    CLI::App* eject = set.add("eject", "Open the tray with the medium on it, or take the medium out",
                              "  disc-drives eject burner\n"
                              "  disc-drives eject burner --to shelf/holiday\n"
                              "  disc-drives eject burner --discard --force",
                              [&] { return ejectMedium(given.common, given.ejecting); });
    eject->add_option("NAME", given.ejecting.name, "The drive, as list names it")->required();
    auto* to = eject->add_option("--to", given.ejecting.takeTo, "Folder that the medium moves to");
    eject->add_flag("--discard", given.ejecting.discard, "Throw the medium away")->excludes(to);
    set.mayLose(eject);
    set.onDrive("open", "Open the tray of a drive without a medium", "  disc-drives open burner",
                [&] { return openTray(given.common, given.name); });
    set.onDrive("close", "Close the tray", "  disc-drives close burner",
                [&] { return closeTray(given.common, given.name); });
}

void addMediumCommands(CommandSet& set, Given& given) {
    CLI::App* insert = set.add("insert", "Put a copy of a medium into a virtual drive, and close the tray",
                               "  disc-drives insert burner blank.medium\n"
                               "  disc-drives insert burner holiday.iso\n"
                               "  disc-drives insert burner holiday.iso --kind DVD+RW\n"
                               "  disc-drives insert burner album.cue\n"
                               "  disc-drives insert burner exported-folder",
                               [&] { return insertMedium(given.common, given.inserting); });
    insert->add_option("NAME", given.inserting.name, "The drive, as list names it")->required();
    insert
        ->add_option("MEDIUM", given.inserting.medium,
                     "A file of blank-medium, a folder of export, or an image (.iso, .cue, .toc)")
        ->required();
    insert->add_option("-k,--kind", given.inserting.kind,
                       "What an image is put on (default: a medium that can only be read)");
    set.mayLose(insert);

    CLI::App* blank = set.add("blank-medium", "Make a blank medium as a file, to be inserted later",
                              "  disc-drives blank-medium CD-R blank.medium\n"
                              "  disc-drives blank-medium DVD+RW small.medium --capacity 100MB",
                              [&] { return makeBlankMedium(given.common, given.medium); });
    blank->add_option("KIND", given.medium.kind, "Such as CD-R, DVD+RW or BD-RE")->required();
    blank->add_option("FILE", given.medium.file, "The file to make")->required();
    blank->add_option("-c,--capacity", given.medium.capacity,
                      "Such as 700MB, 4.7GB, 650MiB, or blocks of 2048 bytes (default: as usual)");
    set.mayLose(blank);

    CLI::App* exporting =
        set.onDrive("export", "Copy a medium out of a virtual drive, for other programs or another drive",
                    "  disc-drives export burner shelf/holiday",
                    [&] { return exportMedium(given.common, given.name, given.folder); });
    exporting->add_option("FOLDER", given.folder, "Where to; made when it is not there")->required();
    set.mayLose(exporting);

    set.add("verify", "Read every block back, and compare with what the medium says it holds",
            "  disc-drives verify\n  disc-drives verify burner",
            [&] { return verifyMedia(given.common, given.name); })
        ->add_option("NAME", given.name, "The drive, as list names it; all drives when left out");

    CLI::App* erase = set.onDrive("erase", "Make a re-writable medium blank again",
                                  "  disc-drives erase burner\n  disc-drives erase burner --complete --force",
                                  [&] { return eraseMedium(given.common, given.name, given.complete); });
    erase->add_flag(
        "--complete", given.complete,
        "Leave nothing readable: overwrite what a virtual medium holds, a physical disc from end to end");
    set.mayLose(erase);
}

int report(const Common& common, const engine::Error& error) {
    std::string line = "disc-drives: " + error.message;
    if (!error.info.empty() && error.message.find(error.info) == std::string::npos)
        line += " (" + error.info + ')';
    std::fprintf(stderr, "%s\n", line.c_str());
    // Whether anybody reads it or not, the sentence above says why.
    if (common.json) static_cast<void>(engine::guarded([&] { printJson(Json{{"error", jsonOf(error)}}); }));
    return failed;
}

} // namespace

int runCommandLine(int count, char** arguments) {
    Given given;
    CLI::App app("Makes, shows, loads and checks disc drives.", "disc-drives");
    app.footer(generalHelp);
    app.require_subcommand(1);
    app.fallthrough(); // --json may stand behind the command
    app.add_flag("--json", given.common.json, "Write JSON, for programs");
    CommandSet set(app, given);
    addDriveCommands(set, given);
    addTrayCommands(set, given);
    addMediumCommands(set, given);
    try {
        app.parse(count, arguments);
    } catch (const CLI::ParseError& problem) {
        return app.exit(problem) == 0 ? 0 : misused;
    }
    watchInterruption();
    const auto status = engine::guarded([&] {
        try {
            return set.run();
        } catch (const Interrupted& stopped) {
            std::fprintf(stderr, "\ndisc-drives: interrupted; %s\n", stopped.left);
            return interruptedStatus;
        }
    });
    return status ? *status : report(given.common, status.error());
}

} // namespace drives
