// Reads arbitrary bytes as a stored configuration (and as a keyset file) and builds the model from
// it. Whatever the archive holds, reading takes defaults and repairs, writing the model back works,
// and reading what was written gives the same archive again.

#include "core/Log.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "model/ArchiveRepairLog.h"
#include "model/CorvaneKeyset.h"
#include "model/CorvaneModelData.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"
#include "surface/Corvane_Constant_Server.h"

#include <cstdint>
#include <cstdlib>

namespace key = corvane::key;

namespace {

// Every keyset holds four full layers whatever its archive says, so a few bytes per keyset would
// otherwise ask for hundreds of megabytes; real configurations stay far below this.
constexpr qsizetype kMaxKeysets = 16;

corvane::PlistValue written(const TVKModelData& modelData)
{
    corvane::PlistValue dict = corvane::PlistValue::makeDict();
    modelData.writeTo(dict);
    return dict;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static Corvane_Constant_Server constants;
    const corvane::PlistReadResult result =
        corvane::PlistCodec::read(QByteArrayView(data, qsizetype(size)));
    if (!result.ok || !result.value.isDict())
        return 0;
    if (result.value.value(key::Keysets).size() > kMaxKeysets)
        return 0;

    corvane::LogCapture quiet;
    // Collecting repairs runs the code that describes them, which reads the damaged values too.
    corvane::ArchiveRepairLog repairs;
    TVKKeyset::resetTargetIDs();
    CorvaneModelData modelData(result.value);
    // There is always a keyset to select, whatever the list held.
    if (modelData.numberOfKeysets() < 1)
        std::abort();
    const corvane::PlistValue first = written(modelData);
    const CorvaneModelData reread(first);
    if (written(reread) != first)
        std::abort();
    // Whatever the model writes, the binary form reads back to the same tree: the writer's
    // sharing and the reader's limits agree.
    const corvane::PlistReadResult stored =
        corvane::PlistCodec::read(corvane::PlistCodec::write(first, corvane::PlistFormat::Binary));
    if (!stored.ok || stored.value != first)
        std::abort();

    const CorvaneKeyset keyset(result.value, &modelData);
    corvane::PlistValue keysetArchive = corvane::PlistValue::makeDict(6);
    keyset.writeTo(keysetArchive);
    const CorvaneKeyset keysetAgain(keysetArchive, &modelData);
    corvane::PlistValue again = corvane::PlistValue::makeDict(6);
    keysetAgain.writeTo(again);
    if (again != keysetArchive)
        std::abort();
    return 0;
}
