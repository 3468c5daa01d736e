#pragma once

#include <cstddef>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

namespace measurement {

/// Pointers to records, oldest first, with what QList has for a queue.
///
/// The capture appends and takes while it holds the engine's mutex, up to 2^31
/// records, and must not be held up by it. So records lie in chunks that stay
/// where they are: an append touches one chunk and now and then takes a new one
/// from the heap, or the one that taking has emptied. What grows with the list is
/// a directory of the chunks, two thousand times shorter than the list.
///
/// The records belong to whoever keeps the list. Not synchronized.
template <typename Record> class RecordList
{
public:
    class const_iterator;
    using value_type = Record *;
    using iterator = const_iterator;

    RecordList() = default;
    RecordList(const RecordList &) = delete;
    RecordList &operator=(const RecordList &) = delete;

    int size() const { return static_cast<int>(m_size); }
    bool isEmpty() const { return m_size == 0; }

    /// Records taken since the list was made or cleared: added to the index of a
    /// record, a number that stays the same as long as the record is in the list.
    std::size_t taken() const { return m_first; }

    Record *const &at(int index) const { return place(m_first + static_cast<std::size_t>(index)); }
    Record *const &operator[](int index) const { return at(index); }
    Record *const &first() const { return at(0); }
    Record *const &last() const { return at(size() - 1); }

    const_iterator begin() const { return {this, 0}; }
    const_iterator end() const { return {this, size()}; }
    const_iterator cbegin() const { return begin(); }
    const_iterator cend() const { return end(); }

    void append(Record *record)
    {
        const std::size_t end = m_first + m_size;
        if (end % chunkLength == 0)
            addChunk(end / chunkLength);
        m_directory[slot(end)]->records[end % chunkLength] = record;
        ++m_size;
    }

    /// The list must not be empty.
    Record *takeFirst()
    {
        Record *const record = first();
        const std::size_t emptied = slot(m_first);
        ++m_first;
        --m_size;
        if (m_first % chunkLength == 0)
            m_spare = std::move(m_directory[emptied]);
        return record;
    }

    void clear() { RecordList().swap(*this); }

    void swap(RecordList &other) noexcept
    {
        m_directory.swap(other.m_directory);
        m_spare.swap(other.m_spare);
        std::swap(m_first, other.m_first);
        std::swap(m_size, other.m_size);
    }

private:
    static constexpr std::size_t chunkLength = 2048;
    static constexpr std::size_t smallestDirectory = 16;

    struct Chunk
    {
        Record *records[chunkLength];
    };
    using ChunkPointer = std::unique_ptr<Chunk>;

    /// Where the directory, a ring, has the chunk of a position. Positions count
    /// all records that were ever appended; its length is a power of two.
    std::size_t slot(std::size_t position) const { return position / chunkLength & (m_directory.size() - 1); }

    Record *const &place(std::size_t position) const
    {
        return m_directory[slot(position)]->records[position % chunkLength];
    }

    void addChunk(std::size_t number)
    {
        const std::size_t oldest = m_first / chunkLength;
        if (number - oldest == m_directory.size())
            enlargeDirectory(oldest);
        ChunkPointer chunk = m_spare ? std::move(m_spare) : std::make_unique_for_overwrite<Chunk>();
        m_directory[slot(number * chunkLength)] = std::move(chunk);
    }

    /// \param oldest number of the first chunk in use; all are
    void enlargeDirectory(std::size_t oldest)
    {
        std::vector<ChunkPointer> larger(m_directory.empty() ? smallestDirectory : 2 * m_directory.size());
        for (std::size_t i = 0; i < m_directory.size(); ++i) {
            const std::size_t number = oldest + i;
            larger[number & (larger.size() - 1)] = std::move(m_directory[number & (m_directory.size() - 1)]);
        }
        m_directory.swap(larger);
    }

    std::vector<ChunkPointer> m_directory;
    ChunkPointer m_spare;
    std::size_t m_first = 0; ///< position of the oldest record
    std::size_t m_size = 0;
};

/// Valid until the list changes.
template <typename Record> class RecordList<Record>::const_iterator
{
public:
    using iterator_category = std::random_access_iterator_tag;
    using value_type = Record *;
    using difference_type = std::ptrdiff_t;
    using pointer = Record *const *;
    using reference = Record *const &;

    const_iterator() = default;

    reference operator*() const { return m_list->at(m_index); }
    pointer operator->() const { return &m_list->at(m_index); }
    reference operator[](difference_type offset) const { return *(*this + offset); }

    const_iterator &operator+=(difference_type offset)
    {
        m_index += static_cast<int>(offset);
        return *this;
    }
    const_iterator &operator-=(difference_type offset) { return *this += -offset; }
    const_iterator &operator++() { return *this += 1; }
    const_iterator &operator--() { return *this += -1; }
    const_iterator operator++(int) { return {m_list, m_index++}; }
    const_iterator operator--(int) { return {m_list, m_index--}; }

    friend const_iterator operator+(const_iterator at, difference_type offset) { return at += offset; }
    friend const_iterator operator+(difference_type offset, const_iterator at) { return at += offset; }
    friend const_iterator operator-(const_iterator at, difference_type offset) { return at -= offset; }
    friend difference_type operator-(const_iterator a, const_iterator b) { return a.m_index - b.m_index; }
    friend bool operator==(const_iterator a, const_iterator b) { return a.m_index == b.m_index; }
    friend auto operator<=>(const_iterator a, const_iterator b) { return a.m_index <=> b.m_index; }

private:
    friend class RecordList;

    const_iterator(const RecordList *list, int index)
        : m_list(list)
        , m_index(index)
    {
    }

    const RecordList *m_list = nullptr;
    int m_index = 0; ///< from the oldest record
};

} // namespace measurement
