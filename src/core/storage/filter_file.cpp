#include "core/storage/filter_file.h"

#include "core/storage/byte_reader.h"
#include "core/storage/byte_writer.h"

namespace finora {
namespace {

constexpr std::string_view kMagic = "Finora filter";
constexpr std::int32_t kLayout = 1;
// A filter file is a few hundred bytes; anything far larger is not one.
constexpr std::uint64_t kMaxFilterBytes = std::uint64_t{16} << 20;

} // namespace

std::string serializeFilter(const StoredFilter& f)
{
    ByteWriter w;
    w.writeString(kMagic);
    w.writeInt32(kLayout);
    w.writeDateTime(f.criteria.from);
    w.writeDateTime(f.criteria.to);
    w.writeInt32(f.criteria.typeFilter);
    w.writeInt32(static_cast<std::int32_t>(f.criteria.categories.size()));
    for (std::int32_t id : f.criteria.categories) {
        w.writeInt32(id);
    }
    w.writeInt32(f.includeSubcategories ? 1 : 0);
    w.writeString(f.criteria.currency);
    w.writeInt32(f.criteria.paidState);
    return w.take();
}

bool parseFilter(std::string_view bytes, StoredFilter& filter)
{
    ByteReader r(bytes);
    std::string magic;
    std::int32_t layout = 0;
    if (!r.readString(magic) || magic != kMagic || !r.readInt32(layout) || layout != kLayout) {
        return false;
    }
    StoredFilter f;
    std::int32_t count = 0;
    r.readDateTime(f.criteria.from);
    r.readDateTime(f.criteria.to);
    r.readInt32(f.criteria.typeFilter);
    r.readInt32(count);
    if (r.failed() || count < 0 || static_cast<std::uint64_t>(count) * 4 > r.remaining()) {
        return false;
    }
    f.criteria.categories.resize(static_cast<std::size_t>(count));
    for (std::int32_t& id : f.criteria.categories) {
        r.readInt32(id);
    }
    std::int32_t include = 0;
    r.readInt32(include);
    r.readString(f.criteria.currency);
    r.readInt32(f.criteria.paidState);
    if (r.failed() || r.remaining() != 0) {
        return false;
    }
    f.includeSubcategories = include != 0;
    // The type selector has three choices; any other stored number means the first, both types.
    if (f.criteria.typeFilter < 0 || f.criteria.typeFilter > 2) {
        f.criteria.typeFilter = 0;
    }
    filter = std::move(f);
    return true;
}

bool saveFilterFile(std::string_view utf8Path, const StoredFilter& filter, FileError* error)
{
    return writeFileAtomically(utf8Path, serializeFilter(filter), error);
}

Result<StoredFilter, FilterLoadError> loadFilterFile(std::string_view utf8Path)
{
    std::string bytes;
    FileError error = FileError::None;
    if (!readWholeFile(utf8Path, bytes, &error, kMaxFilterBytes)) {
        // A file too large for a filter, or no plain file, is no filter.
        return FilterLoadError{
            error == FileError::Other ? FilterLoad::NotAFilter : FilterLoad::CannotOpen, error};
    }
    StoredFilter filter;
    if (!parseFilter(bytes, filter)) {
        return FilterLoadError{FilterLoad::NotAFilter, FileError::None};
    }
    return filter;
}

std::string filterLoadMessage(const FilterLoadError& failure, std::string_view utf8Path)
{
    const std::string path(utf8Path);
    if (failure.kind == FilterLoad::CannotOpen) {
        return "Филтърът „" + path + "“ не може да бъде отворен.\n" + describe(failure.error);
    }
    return "Файлът „" + path + "“ не е филтър на Finora или е повреден.";
}

} // namespace finora
