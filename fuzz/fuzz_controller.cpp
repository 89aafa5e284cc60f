// The controller fed what a hostile service might send: a run of messages, each a code chosen
// from the service's own ("TCtl", "CurC", "CnSt") or any other, with a body of any length. After
// every message the selection names a keyset, layer and control the model has, and nothing the
// controller sent back names one it does not have.
#include "app/CorvaneController.h"
#include "core/FourCharCode.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "service/MessageCatalogue.h"
#include "service/TVK_MessageSpecs.h"
#include "service/TVK_PrivateMessenger.h"

#include <QByteArray>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <memory>

using namespace corvane;

namespace {

struct Harness
{
    QTemporaryDir home;
    std::unique_ptr<CorvaneController> controller;
};

Harness* s_harness = nullptr;

bool inRange(const TVKModelData& model, qint64 keyset, qint64 layer, qint64 group, qint64 control)
{
    if (keyset < 0 || keyset >= model.numberOfKeysets() || layer < 0 || layer >= 4)
        return false;
    const TVKLayer* target = model.keysetAtIndex(int(keyset))->layerAtIndex(int(layer));
    return target && target->hasControl(group, control);
}

void check(bool condition)
{
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QGuiApplication app(*argc, *argv);
    s_harness = new Harness;
    // A private store and port folder: no service is found, and every send is seen all the same.
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(s_harness->home.path()));
    qputenv("XDG_DATA_HOME", QFile::encodeName(s_harness->home.path()));
    qputenv("TVK_PORT_DIR", QFile::encodeName(s_harness->home.path()));
    s_harness->controller = std::make_unique<CorvaneController>();
    s_harness->controller->awakeFromNib();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    CorvaneController& controller = *s_harness->controller;
    const TVKModelData& model = *controller.modelData();
    TVK_PrivateMessenger& messenger = *controller.messenger();
    messenger.setSendObserver([&](MessageID id, const QByteArray& body) {
        TVK_IncomingMessageSpec fields(body);
        if (id == msg::ChEK) {
            check(qint64(fields.deserializeNextField()) < model.numberOfKeysets());
        } else if (id == msg::ChEL) {
            check(qint64(fields.deserializeNextField()) < 4);
        } else if (id == msg::TCtl) {
            const TVK_IncomingControlStateSpec state(body);
            check(inRange(model, controller.selectedKeyset(), controller.selectedLayer(),
                          state.groupIndex(), state.controlNumOrChannel()));
        }
    });

    static const MessageID codes[] = {msg::TCtl, msg::CurC, msg::CnSt,      msg::TCtl,
                                      msg::CurC, msg::MPCn, fourCC("Junk"), 0};
    std::size_t at = 0;
    while (at + 2 <= size) {
        const MessageID code = codes[data[at] % std::size(codes)];
        const std::size_t length = std::min<std::size_t>(data[at + 1] % 24, size - at - 2);
        const QByteArray body(reinterpret_cast<const char*>(data + at + 2), qsizetype(length));
        at += 2 + length;
        messenger.MessageCallbackForPort(nullptr, code, body, nullptr);
        check(inRange(model, controller.selectedKeyset(), controller.selectedLayer(),
                      controller.modelDataGroupIndex(), controller.modelDataControlIndex()));
    }
    messenger.setSendObserver(nullptr);
    return 0;
}
