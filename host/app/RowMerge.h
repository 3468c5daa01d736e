#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <utility>

namespace host {

/// What mergeRows() calls around each change of the list that a model shows.
struct RowChanges
{
    std::function<void(int row)> beginInsert;
    std::function<void()> endInsert;
    std::function<void(int row)> beginRemove;
    std::function<void()> endRemove;
};

/// Makes `rows` hold `wanted` with few insertions and removals, so that the
/// views of a model keep selection and open editors.
/// \param isSame whether two rows stand for the same thing
/// \param update takes over the contents of a wanted row: (row number, row)
template <typename Rows, typename Same, typename Update>
void mergeRows(Rows &rows, Rows wanted, const RowChanges &changes, Same isSame, Update update)
{
    const auto remove = [&](std::size_t row) {
        changes.beginRemove(static_cast<int>(row));
        rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(row));
        changes.endRemove();
    };
    for (std::size_t row = rows.size(); row-- > 0;) {
        if (std::none_of(wanted.begin(), wanted.end(), [&](const auto &w) { return isSame(rows[row], w); }))
            remove(row);
    }
    for (std::size_t row = 0; row < wanted.size(); ++row) {
        if (row < rows.size() && isSame(rows[row], wanted[row])) {
            update(static_cast<int>(row), std::move(wanted[row]));
            continue;
        }
        // One that stands further down has changed its place.
        for (std::size_t later = rows.size(); later-- > row;) {
            if (isSame(rows[later], wanted[row]))
                remove(later);
        }
        changes.beginInsert(static_cast<int>(row));
        rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(row), std::move(wanted[row]));
        changes.endInsert();
    }
}

} // namespace host
