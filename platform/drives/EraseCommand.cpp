// disc-drives erase
#include "Asked.hpp"
#include "Commands.hpp"
#include "Console.hpp"
#include "Describe.hpp"
#include "EraseJob.hpp"

namespace drives {

int eraseMedium(const Common& common, const std::string& name, bool complete) {
    const Found found = driveNamed(name);
    if (!found.drive) throw engine::Failure(found.problem);
    const auto medium = take(found.drive->readMedium());
    const Asked asked(common, found, "Erase it", medium && medium->erasable);
    engine::EraseJob job(found.drive);
    {
        const Exclusive mine(*found.drive);
        asked.requireUnchanged();
        job.keep(engine::DriveHold(found.drive));
    }
    take(job.start(complete ? engine::EraseType::Complete : engine::EraseType::Quick));
    {
        Progress progress("Erasing", 0, common.json);
        while (!job.waitFor(std::chrono::milliseconds(50))) {
            const double percent = job.status().percent;
            if (percent >= 0) progress.showPart(percent);
            if (isInterrupted()) // a recorder goes on by itself, a virtual drive leaves the medium openly incomplete
                throw Interrupted{"the medium may be erased in part; erase it again before it is used."};
        }
    }
    const engine::EraseStatus status = job.wait();
    if (status.error) throw engine::Failure(*status.error);
    if (common.json) {
        printJson(jsonOf(driveNamed(name)));
    } else {
        print("The medium in " + engine::inQuotes(found.name) + " is blank.\n");
    }
    return 0;
}

} // namespace drives
