#include "widgets/pictureflow.h"

#include "widgets/pictureflowanimator.h"
#include "widgets/pictureflowsoftwarerenderer.h"
#include "widgets/pictureflowstate.h"
#include "widgets/resourceimage.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QTimer>

#include <algorithm>
#include <map>
#include <utility>

namespace {

constexpr int keyJump = 10; // slides, with Control

} // namespace

struct PictureFlow::Private {
    explicit Private(PictureFlow* widget);
    void decode();

    PictureFlowState state;
    PictureFlowAnimator animator;
    PictureFlowSoftwareRenderer renderer;
    QTimer triggerTimer;
    std::map<int, QString> undecoded; ///< paths of images that nobody has seen yet, by slide
};

PictureFlow::Private::Private(PictureFlow* widget)
    : animator(&state)
    , renderer(&state, widget)
{
    state.reset();
    state.reposition();
    renderer.init();
    animator.animateTimer.setParent(widget);
    animator.animateTimer.setObjectName(QStringLiteral("animateTimer"));
    triggerTimer.setParent(widget);
    triggerTimer.setObjectName(QStringLiteral("triggerTimer"));
    triggerTimer.setSingleShot(true);
}

void PictureFlow::Private::decode()
{
    for (const auto& [index, path] : std::exchange(undecoded, {}))
        *state.slideImages[std::size_t(index)] = resourceImage(path);
}

PictureFlow::PictureFlow(QWidget* parent)
    : QWidget(parent)
    , d(std::make_unique<Private>(this))
{
    connect(&d->animator.animateTimer, &QTimer::timeout, this, &PictureFlow::updateAnimation);
    connect(&d->triggerTimer, &QTimer::timeout, this, &PictureFlow::render);
    setAttribute(Qt::WA_StaticContents);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
}

PictureFlow::~PictureFlow() = default;

int PictureFlow::slideCount() const
{
    return int(d->state.slideImages.size());
}

QSize PictureFlow::slideSize() const
{
    return QSize(d->state.slideWidth, d->state.slideHeight);
}

void PictureFlow::setSlideSize(QSize size)
{
    d->state.slideWidth = size.width();
    d->state.slideHeight = size.height();
    d->state.reposition();
    triggerRender();
}

PictureFlow::ReflectionEffect PictureFlow::reflectionEffect() const
{
    return d->state.reflectionEffect;
}

void PictureFlow::setReflectionEffect(ReflectionEffect effect)
{
    d->state.reflectionEffect = effect;
    triggerRender();
}

QColor PictureFlow::backgroundColor() const
{
    return QColor(d->state.backgroundColor);
}

void PictureFlow::setBackgroundColor(QColor color)
{
    d->state.backgroundColor = color.rgb();
    triggerRender();
}

QImage PictureFlow::slide(int index) const
{
    d->decode();
    const QImage* image = d->state.imageAt(index);
    return image ? *image : QImage();
}

int PictureFlow::centerIndex() const
{
    return d->state.centerIndex;
}

const PictureFlowState& PictureFlow::state() const
{
    d->decode();
    return d->state;
}

const PictureFlowAnimator& PictureFlow::animator() const
{
    return d->animator;
}

void PictureFlow::addResourceSlide(const QString& path)
{
    d->undecoded[slideCount()] = path;
    addSlide(QImage());
}

void PictureFlow::addSlide(QImage image)
{
    d->state.slideImages.push_back(std::make_unique<QImage>(std::move(image)));
    triggerRender();
}

void PictureFlow::addSlide(QPixmap pixmap)
{
    addSlide(pixmap.toImage());
}

void PictureFlow::setSlide(int index, QImage image)
{
    d->undecoded.erase(index);
    if (d->state.imageAt(index))
        d->state.slideImages[std::size_t(index)] = std::make_unique<QImage>(std::move(image));
    triggerRender();
}

void PictureFlow::setSlide(int index, QPixmap pixmap)
{
    setSlide(index, pixmap.toImage());
}

void PictureFlow::setCenterIndex(int index)
{
    d->state.centerIndex = clampedIndex(index);
    d->state.reset();
    d->animator.stop(d->state.centerIndex);
    triggerRender();
}

void PictureFlow::clear()
{
    d->undecoded.clear();
    d->state.slideImages.clear();
    setCenterIndex(0);
}

void PictureFlow::showPrevious()
{
    const int center = d->state.centerIndex;
    if (d->animator.step < 0) {
        d->animator.target = std::max(center - 2, 0);
        focusIndex = center - 2;
    } else if (d->animator.step > 0) {
        turnTo(center);
    } else if (center > 0) {
        turnTo(center - 1);
    }
}

void PictureFlow::showNext()
{
    const int center = d->state.centerIndex;
    const int last = slideCount() - 1;
    if (d->animator.step > 0) {
        d->animator.target = std::min(center + 2, last);
        focusIndex = center + 2;
    } else if (d->animator.step < 0) {
        turnTo(center);
    } else if (center < last) {
        turnTo(center + 1);
    }
}

void PictureFlow::showSlide(int index)
{
    const int slide = clampedIndex(index);
    if (slide != d->state.centerSlide.slideIndex)
        d->animator.start(slide);
}

void PictureFlow::render()
{
    d->renderer.dirty = true;
    update();
}

void PictureFlow::triggerRender()
{
    d->renderer.dirty = true;
    d->triggerTimer.start(0);
}

void PictureFlow::updateAnimation()
{
    const int oldCenter = d->state.centerIndex;
    d->animator.update();
    triggerRender();
    if (d->state.centerIndex != oldCenter)
        emit centerIndexChanged(d->state.centerIndex);
}

void PictureFlow::paintEvent(QPaintEvent*)
{
    d->decode();
    d->renderer.paint();
}

void PictureFlow::keyPressEvent(QKeyEvent* event)
{
    const bool left = event->key() == Qt::Key_Left;
    if (!left && event->key() != Qt::Key_Right)
        return event->ignore();
    if (event->modifiers() == Qt::ControlModifier)
        showSlide(d->state.centerIndex + (left ? -keyJump : keyJump));
    else if (left)
        showPrevious();
    else
        showNext();
    event->accept();
}

void PictureFlow::mousePressEvent(QMouseEvent* event)
{
    if (event->pos().x() > width() / 2)
        showNext();
    else
        showPrevious();
}

void PictureFlow::resizeEvent(QResizeEvent* event)
{
    triggerRender();
    QWidget::resizeEvent(event);
}

int PictureFlow::clampedIndex(int index) const
{
    return std::max(0, std::min(index, slideCount() - 1));
}

void PictureFlow::turnTo(int index)
{
    d->animator.start(index);
    focusIndex = index;
}
