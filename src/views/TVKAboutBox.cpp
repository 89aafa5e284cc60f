#include "views/TVKAboutBox.h"

#include "views/TVKBundle.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLinearGradient>
#include <QPainter>
#include <QVBoxLayout>
#include <QVariantAnimation>

namespace {

constexpr int kPictureWidth = 560;
constexpr int kPictureHeight = 264; // the RS unit's proportions
constexpr int kMargin = 20;

} // namespace

TVKAboutBox::TVKAboutBox(QWidget* parent) : QDialog(parent)
{
    setWindowTitle(tr("About Corvane"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kMargin, kMargin + kPictureHeight + 12, kMargin, kMargin);
    auto* name = new QLabel(QStringLiteral("Corvane"), this);
    QFont big = name->font();
    big.setPointSizeF(big.pointSizeF() * 1.8);
    big.setBold(true);
    name->setFont(big);
    name->setAlignment(Qt::AlignHCenter);
    layout->addWidget(name);
    auto* text = new QLabel(
        tr("Version %1<br>Configuration for the Corvane RS control surface and its TL, TLW, "
           "TLW2, NV and DZ expanders.")
            .arg(QStringLiteral(CORVANE_VERSION)),
        this);
    text->setAlignment(Qt::AlignHCenter);
    text->setWordWrap(true);
    layout->addWidget(text);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    layout->addWidget(buttons);
    setFixedWidth(kPictureWidth + 2 * kMargin);

    m_sweep = new QVariantAnimation(this);
    m_sweep->setStartValue(0.0);
    m_sweep->setEndValue(1.0);
    m_sweep->setDuration(1400);
    m_sweep->setEasingCurve(QEasingCurve::InOutSine);
    connect(m_sweep, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        m_position = value.toReal();
        update();
    });
    connect(m_sweep, &QVariantAnimation::finished, this, [this] {
        m_position = -1;
        update();
    });
}

void TVKAboutBox::play()
{
    m_sweep->stop();
    m_sweep->start();
}

bool TVKAboutBox::isPlaying() const
{
    return m_sweep->state() == QAbstractAnimation::Running;
}

void TVKAboutBox::paintEvent(QPaintEvent* event)
{
    QDialog::paintEvent(event);
    QPainter p(this);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    const QRect target(kMargin, kMargin, kPictureWidth, kPictureHeight);
    TVKBundle& bundle = TVKBundle::mainBundle();
    // Drawn at twice the pixels it needs, so that it stays sharp when scaled down.
    p.drawPixmap(target, bundle.sheet(QStringLiteral("CorvaneRS_Midnight"), 2));
    if (m_position < 0)
        return;
    // The lamps come on in a band that travels across the unit.
    const qreal x = target.left() + m_position * target.width();
    QLinearGradient band(x - 80, 0, x + 80, 0);
    band.setColorAt(0, QColor(0, 0, 0, 0));
    band.setColorAt(0.5, QColor(0, 0, 0, 255));
    band.setColorAt(1, QColor(0, 0, 0, 0));
    QImage lit(target.size() * 2, QImage::Format_ARGB32_Premultiplied);
    lit.fill(Qt::transparent);
    {
        QPainter l(&lit);
        l.setRenderHint(QPainter::SmoothPixmapTransform);
        l.drawPixmap(QRect(QPoint(), lit.size()),
                     bundle.sheet(QStringLiteral("CorvaneRS_Midnight_Lit"), 2));
        l.setCompositionMode(QPainter::CompositionMode_DestinationIn);
        l.scale(2, 2);
        l.translate(-target.topLeft());
        l.fillRect(target, band);
    }
    lit.setDevicePixelRatio(2);
    p.drawImage(target.topLeft(), lit);
}
