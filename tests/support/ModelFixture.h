#pragma once

#include "core/PlistValue.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"
#include "surface/Corvane_Constant_Server.h"

#include <gtest/gtest.h>
#include <memory>

// The live model data, the target IDs of the run and the surface constants are process-wide;
// every case starts from none of them and its own constant server.
class ModelTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TVKKeyset::resetTargetIDs();
        TVKModelData::setDefaultModelData(nullptr);
        m_constants = std::make_unique<Corvane_Constant_Server>();
    }

    void TearDown() override
    {
        TVKModelData::setDefaultModelData(nullptr);
        m_constants.reset();
        TVKKeyset::resetTargetIDs();
    }

    // A mutable child of an archive, following dictionary keys and list indices.
    static corvane::PlistValue* child(corvane::PlistValue* node, QStringView key)
    {
        return node ? node->find(key) : nullptr;
    }
    static corvane::PlistValue* child(corvane::PlistValue* node, qsizetype index)
    {
        return node ? node->findAt(index) : nullptr;
    }

    // The first n entries of a list.
    static corvane::PlistValue truncated(const corvane::PlistValue& list, qsizetype n)
    {
        corvane::PlistValue result = corvane::PlistValue::makeArray();
        for (qsizetype i = 0; i < n && i < list.size(); ++i)
            result.append(list.at(i));
        return result;
    }

    static corvane::PlistValue archiveOf(const TVKModelData& modelData)
    {
        corvane::PlistValue dict = corvane::PlistValue::makeDict();
        modelData.writeTo(dict);
        return dict;
    }

    static corvane::PlistValue archiveOf(const TVKKeyset& keyset)
    {
        corvane::PlistValue dict = corvane::PlistValue::makeDict(6);
        keyset.writeTo(dict);
        return dict;
    }

    // Where two archives first differ, as a path ("TVKKeysets/1/TVKLayers/0 ..."); empty when
    // they are equal. Makes a failed comparison of whole configurations readable.
    static QString firstDifference(const corvane::PlistValue& a, const corvane::PlistValue& b,
                                   const QString& path = QString())
    {
        using Type = corvane::PlistValue::Type;
        if (a.type() != b.type())
            return path + QStringLiteral(": kinds differ");
        if (a.type() == Type::Dict) {
            QStringList keys = a.keys();
            for (const QString& key : b.keys()) {
                if (!keys.contains(key))
                    keys << key;
            }
            for (const QString& key : keys) {
                const QString d = firstDifference(a.value(key), b.value(key), path + u'/' + key);
                if (!d.isEmpty())
                    return d;
            }
            return QString();
        }
        if (a.type() == Type::Array) {
            if (a.size() != b.size())
                return path + QStringLiteral(": %1 against %2 entries").arg(a.size()).arg(b.size());
            for (qsizetype i = 0; i < a.size(); ++i) {
                const QString d =
                    firstDifference(a.at(i), b.at(i), path + u'/' + QString::number(i));
                if (!d.isEmpty())
                    return d;
            }
            return QString();
        }
        if (a != b)
            return path + QStringLiteral(": values differ (%1 / %2)")
                              .arg(a.toVariant().toString(), b.toVariant().toString());
        return QString();
    }

    std::unique_ptr<Corvane_Constant_Server> m_constants;
};
