// What is said of an item, over what its source says.
#include "ItemAttributes.hpp"

#include <memory>

namespace engine::plan {
namespace {

std::shared_ptr<const FilesystemAttributes> merged(FilesystemAttributes own,
                                                   const FilesystemAttributes& given) {
    for (size_t i = 0; i < own.size(); ++i) {
        OwnAttributes& to = own[i];
        const OwnAttributes& from = given[i];
        for (const auto part :
             {&OwnAttributes::mode, &OwnAttributes::owner, &OwnAttributes::group, &OwnAttributes::version})
            if (from.*part) to.*part = from.*part;
        for (const auto date : {&OwnAttributes::created, &OwnAttributes::modified, &OwnAttributes::accessed,
                                &OwnAttributes::changed, &OwnAttributes::backedUp, &OwnAttributes::recorded,
                                &OwnAttributes::effective, &OwnAttributes::expires})
            if (from.*date) to.*date = from.*date;
        if (from.invisible) to.invisible = from.invisible;
    }
    return std::make_shared<const FilesystemAttributes>(own);
}

std::shared_ptr<const MacAttributes> merged(MacAttributes mac, const MacAttributes& given) {
    const auto take = [](auto& to, const auto& from) {
        if (from) to = from;
    };
    take(mac.created, given.created);
    take(mac.backedUp, given.backedUp);
    take(mac.type, given.type);
    take(mac.creator, given.creator);
    take(mac.flags, given.flags);
    take(mac.extendedFlags, given.extendedFlags);
    take(mac.view, given.view);
    take(mac.textEncoding, given.textEncoding);
    take(mac.windowBounds, given.windowBounds);
    take(mac.iconLocation, given.iconLocation);
    take(mac.scrollPosition, given.scrollPosition);
    return std::make_shared<const MacAttributes>(mac);
}

// What is said for all file systems goes before what the node had for one.
void outdo(std::shared_ptr<const FilesystemAttributes>& known, const Attributes& given) {
    FilesystemAttributes own = *known;
    for (OwnAttributes& its : own) {
        if (given.mode) its.mode.reset();
        if (given.owner) its.owner.reset();
        if (given.group) its.group.reset();
        if (given.modified) its.modified.reset();
        if (given.accessed) its.accessed.reset();
        if (given.changed) its.changed.reset();
        if (given.invisible) its.invisible.reset();
    }
    known = std::make_shared<const FilesystemAttributes>(own);
}

} // namespace

bool isChanged(const Attributes& given) {
    return given.mode || given.owner || given.group || given.modified || given.accessed || given.changed ||
           given.invisible || given.realTime || given.udfPermissions || given.mac || given.isoMac ||
           given.own;
}

void apply(Tree& tree, uint32_t index, const Attributes& given) {
    Node& node = tree.nodes[index];
    if (given.mode) node.mode = static_cast<uint16_t>(*given.mode & 07777);
    node.owner = given.owner.value_or(node.owner);
    node.group = given.group.value_or(node.group);
    node.modified = given.modified.value_or(node.modified);
    node.accessed = given.accessed.value_or(node.accessed);
    node.changed = given.changed.value_or(node.changed);
    node.invisible = given.invisible.value_or(node.invisible);
    node.isRealTime = given.realTime.value_or(node.isRealTime);
    node.udfPermissions = given.udfPermissions.value_or(node.udfPermissions);
    if (const auto known = tree.own.find(index); known != tree.own.end()) outdo(known->second, given);
    const auto lay = [index](const auto& over, auto& all) {
        if (!over) return;
        auto& known = all[index];
        known = known ? merged(*known, *over) : over;
    };
    lay(given.mac, tree.mac);
    lay(given.isoMac, tree.isoMac);
    lay(given.own, tree.own);
}

} // namespace engine::plan
