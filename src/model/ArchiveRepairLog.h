#pragma once

#include <QString>
#include <vector>

namespace corvane {

// One thing an archive reader put right: an action it could not restore and dropped, a control of
// an unknown type dropped with the controls after it in its group, or groups, controls and layers
// added because the archive held fewer than the surface has. Indices are −1 where they do not
// apply (a whole group or layer).
struct ArchiveRepair
{
    QString keyset;
    int layer = -1;
    int group = -1;
    bool display = false;
    int control = -1;
    QString what;

    bool operator==(const ArchiveRepair&) const = default;
};

// Collects the repairs of the archive readers while alive (reading itself never fails and never
// reports). Logs nest: the innermost one receives the repairs.
class ArchiveRepairLog
{
public:
    ArchiveRepairLog();
    ~ArchiveRepairLog();
    ArchiveRepairLog(const ArchiveRepairLog&) = delete;
    ArchiveRepairLog& operator=(const ArchiveRepairLog&) = delete;

    const std::vector<ArchiveRepair>& repairs() const { return m_repairs; }
    bool isEmpty() const { return m_repairs.empty(); }
    void clear() { m_repairs.clear(); }

    // Readers call these; nothing happens while no log is alive.
    static bool isActive();
    static void record(ArchiveRepair repair);

private:
    std::vector<ArchiveRepair> m_repairs;
    ArchiveRepairLog* m_previous = nullptr;
};

} // namespace corvane
