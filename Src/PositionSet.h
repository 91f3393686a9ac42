// PositionSet: which list positions are in a list of them, answered without a walk. Derived from the list, which keeps
// the order; owned by CSFileList, same thread rules.
#ifndef POSITION_SET_H
#define POSITION_SET_H

#include <algorithm>
#include <cstddef>
#include <set>
#include <vector>

namespace kelp {

class PositionSet {
public:
    /// Brings the set in step with the list of its members, after the list has been emptied or filled by itself.
    void Match(const std::vector<int>& members) {
        if (m_size != members.size()) {
            *this = PositionSet();
            std::for_each(members.begin(), members.end(), [this](int position) { Insert(position); });
        }
    }
    bool Contains(int position) const {
        return IsListed(position) ? Slot(position) < m_listed.size() && m_listed[Slot(position)]
                                  : m_others.contains(position);
    }
    /// The position must not be a member.
    void Insert(int position) {
        ++m_size;
        if (!IsListed(position)) {
            m_others.insert(position);
            return;
        }
        m_listed.resize(std::max(m_listed.size(), Slot(position) + 1));
        m_listed[Slot(position)] = true;
    }
    /// The position must be a member.
    void Erase(int position) {
        --m_size;
        if (IsListed(position)) {
            m_listed[Slot(position)] = false;
        } else {
            m_others.erase(position);
        }
    }

private:
    static constexpr int kMostListed = 1 << 17; // every position that a list can have, and then some

    static bool IsListed(int position) {
        return position >= 0 && position < kMostListed;
    }
    static std::size_t Slot(int position) {
        return static_cast<std::size_t>(position);
    }

    std::size_t m_size = 0;
    std::vector<bool> m_listed;
    std::set<int> m_others; // a client may select any number
};

} // namespace kelp

#endif
