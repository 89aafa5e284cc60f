#include "model/ArchiveRepairLog.h"

namespace corvane {

namespace {
ArchiveRepairLog* g_currentLog = nullptr;
}

ArchiveRepairLog::ArchiveRepairLog() : m_previous(g_currentLog)
{
    g_currentLog = this;
}

ArchiveRepairLog::~ArchiveRepairLog()
{
    g_currentLog = m_previous;
}

bool ArchiveRepairLog::isActive()
{
    return g_currentLog != nullptr;
}

void ArchiveRepairLog::record(ArchiveRepair repair)
{
    if (g_currentLog)
        g_currentLog->m_repairs.push_back(std::move(repair));
}

} // namespace corvane
