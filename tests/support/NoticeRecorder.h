#pragma once

#include "core/NotificationCenter.h"

#include <vector>

// Keeps every notice of one type posted on the default centre while it lives.
template <class Notice>
struct NoticeRecorder
{
    explicit NoticeRecorder(const void* sender = nullptr)
        : observation(corvane::NotificationCenter::defaultCenter().observe<Notice>(
              sender, [this](const Notice& n) { posted.push_back(n); }))
    {}
    NoticeRecorder(const NoticeRecorder&) = delete;
    NoticeRecorder& operator=(const NoticeRecorder&) = delete;

    std::vector<Notice> posted;
    corvane::NotificationCenter::Observation observation;
};
