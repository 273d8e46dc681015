#include "platform/qt/CalendarWidget.h"

#include <QAbstractEventDispatcher>
#include <QKeyEvent>
#include <QPainter>
#include <algorithm>
#include <ctime>
#include <optional>
#include <utility>

#include "platform/qt/Look.h"

namespace platform::forms {

namespace {

constexpr int weekdayRow = 0, rows = MonthPage::weeks + 1;
constexpr int edge = 6, titleHeight = 30;
constexpr std::int16_t selectorsShown = 1, yearAheadOfMonth = 2;
constexpr std::int32_t cellsOfGrid = 2;

// The date that a key chooses, starting from `from`.
std::optional<QDate> DateOfKey(int key, const QDate& from) {
    switch (key) {
        case Qt::Key_Left:
            return from.addDays(-1);
        case Qt::Key_Right:
            return from.addDays(1);
        case Qt::Key_Up:
            return from.addDays(-MonthPage::columns);
        case Qt::Key_Down:
            return from.addDays(MonthPage::columns);
        case Qt::Key_Home:
            return from.addDays(1 - from.day());
        case Qt::Key_End:
            return from.addDays(from.daysInMonth() - from.day());
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Space:
            return from;
        default:
            return {};
    }
}

// How many months a key turns by.
int MonthsOfKey(const QKeyEvent& event) {
    const int months = event.modifiers() & (Qt::ControlModifier | Qt::ShiftModifier) ? monthsAYear : 1;
    return event.key() == Qt::Key_PageUp ? -months : event.key() == Qt::Key_PageDown ? months : 0;
}

// Shrinks a text that is too wide: some languages have long month names.
void DrawFitting(QPainter& painter, const QRect& room, const QString& text) {
    QFont font = painter.font();
    const int wanted = QFontMetrics(font).horizontalAdvance(text);
    if (wanted > room.width()) {
        font.setPixelSize(std::max(1, font.pixelSize() * room.width() / wanted));
        painter.setFont(font);
    }
    painter.drawText(room, Qt::AlignCenter, text);
}

// The keyboard's day while none is chosen; dashed, unlike the mark of today.
void DrawCursor(QPainter& painter, const QRect& cell) {
    painter.save();
    painter.setPen(QPen(QColor(look::ink), 1, Qt::DashLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(cell.adjusted(2, 2, -3, -3));
    painter.restore();
}

QFont Bold(QFont font) {
    font.setBold(true);
    return font;
}

}  // namespace

CalendarWidget::CalendarWidget(Calendar& control, QWidget& parent)
    : QWidget(&parent), TypedView(control), selectors_(*this, [this](int months) { return Turn(months); }) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
}

int CalendarWidget::Today() const {
    const Calendar& control = Typed();
    if (!control.ShowOption) return 0;
    const QDate today = QDate::currentDate();
    return today.year() == control.Year() && today.month() == control.Month() ? today.day() : 0;
}

CalendarWidget::Shown CalendarWidget::Wanted() const {
    const Calendar& control = Typed();
    return {control.Day(),
            control.Month(),
            control.Year(),
            Today(),
            IsYearAhead(),
            control.gridcelleffect == cellsOfGrid,
            control.showdateselectors == selectorsShown,
            ToQt(*control.dayfont),
            ToQt(*control.gridfont),
            ToQt(*control.titlefont)};
}

void CalendarWidget::SyncOwn() {
    Shown wanted = Wanted();
    if (wanted == shown_) return;
    shown_ = std::move(wanted);
    selectors_.Show(shown_.selectors);
    selectors_.Place(TitleRect(), shown_.yearFirst);
    selectors_.Name([this](int months) { return TitleOf(Month(months)); });
    update();
}

QString CalendarWidget::SpokenName() const {
    const Calendar& control = Typed();
    const QDate date(control.Year(), control.Month(), control.Day());
    return date.isValid() ? locale_.toString(date, QLocale::LongFormat) : TitleOf(Month(0));
}

// Moves the mark of today after midnight, a change of the clock or a sleep of the computer. Called whenever
// the program has been awake anyway, so that no timer needs to wake it. Looks at most once a second: finding
// the date takes Qt about as long as a call to the host takes the add-in.
void CalendarWidget::FollowToday() {
    const std::time_t now = std::time(nullptr);
    if (std::exchange(lastLook_, now) == now) return;
    if (Model() && Today() != shown_.today) Sync();
}

bool CalendarWidget::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::Show:
            beforeWaiting_ =
                connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
                        [this] { FollowToday(); });
            break;
        case QEvent::Hide:
            disconnect(beforeWaiting_);
            break;
        case QEvent::Leave:
            PointAt({});
            break;
        case QEvent::EnabledChange:
            update();
            break;
        default:
            break;
    }
    return QWidget::event(event);
}

void CalendarWidget::resizeEvent(QResizeEvent*) {
    selectors_.Place(TitleRect(), shown_.yearFirst);
}

int CalendarWidget::CursorDay() const {
    return DayExists(shown_.year, shown_.month, shown_.day) ? shown_.day : 1;
}

int CalendarWidget::DayAt(QPoint place) const {
    const MonthPage page = Page();
    for (int day = 1; day <= page.Days(); ++day)
        if (DayRect(day).contains(place)) return day;
    return 0;
}

int CalendarWidget::DayUnderMouse() const {
    return mouse_ && shown_.selectors ? DayAt(*mouse_) : 0;
}

void CalendarWidget::PointAt(std::optional<QPoint> place) {
    const int before = DayUnderMouse();
    mouse_ = place;
    if (const int now = DayUnderMouse(); now != before)
        for (const int changed : {before, now})
            if (changed != 0) update(DayRect(changed));
}

// The model refuses while the operator may not choose the date.
void CalendarWidget::Choose(const QDate& date) {
    if (!IsOperable()) return;
    const auto alive = KeepWindow();
    DateParts parts;
    date.getDate(&parts.year, &parts.month, &parts.day);
    Guard([&] { Typed().ChooseDate(parts); });
}

bool CalendarWidget::Turn(int months) {
    if (!IsOperable()) return false;
    const auto alive = KeepWindow();
    const int wanted = Typed().Year() * monthsAYear + Typed().Month() - 1 + months;
    const auto year = static_cast<std::int16_t>(wanted / monthsAYear);
    const auto month = static_cast<std::int16_t>(wanted % monthsAYear + 1);
    Guard([&] { Typed().TurnTo(year, month); });
    return IsOperable();
}

void CalendarWidget::keyPressEvent(QKeyEvent* event) {
    if (!Model()) return;
    if (const int months = MonthsOfKey(*event); months != 0)
        Turn(months);
    else if (const auto date = DateOfKey(event->key(), {shown_.year, shown_.month, CursorDay()}))
        Choose(*date);
    else
        QWidget::keyPressEvent(event);
}

void CalendarWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !Model()) return;
    if (const int day = DayAt(event->position().toPoint()); day != 0)
        Choose({shown_.year, shown_.month, day});
}

void CalendarWidget::mouseMoveEvent(QMouseEvent* event) {
    PointAt(event->position().toPoint());
}

// The first of the month that is `fromShown` months after the shown one.
QDate CalendarWidget::Month(int fromShown) const {
    return QDate(Typed().Year(), Typed().Month(), 1).addMonths(fromShown);
}

QString CalendarWidget::NameOf(const QDate& month) const {
    QString name = locale_.standaloneMonthName(month.month());
    if (!name.isEmpty()) name[0] = name[0].toUpper();
    return name;
}

// Chinese and Japanese put the year first in every market.
bool CalendarWidget::IsYearAhead() const {
    return Typed().MarketStyle == yearAheadOfMonth || SaysYear();
}

// They also add a word for "year" to the number.
bool CalendarWidget::SaysYear() const {
    return locale_.language() == QLocale::Chinese || locale_.language() == QLocale::Japanese;
}

QString CalendarWidget::YearText(int year) const {
    const QString number = QString::number(year);
    return SaysYear() ? number + u'\u5e74' : number;
}

QString CalendarWidget::TitleOf(const QDate& month) const {
    const QString year = YearText(month.year());
    if (SaysYear()) return year + NameOf(month);
    return IsYearAhead() ? year + u' ' + NameOf(month) : NameOf(month) + u' ' + year;
}

QRect CalendarWidget::TitleRect() const {
    return {edge, 0, width() - 2 * edge, titleHeight};
}

QRect CalendarWidget::GridRect() const {
    return rect().adjusted(edge, titleHeight, -edge, -edge);
}

// Cells fill the grid without gaps, whatever its size.
QRect CalendarWidget::CellRect(int row, int column) const {
    const QRect grid = GridRect();
    const auto corner = [&](int r, int c) {
        return grid.topLeft() + QPoint(grid.width() * c / MonthPage::columns, grid.height() * r / rows);
    };
    return {corner(row, column), corner(row + 1, column + 1) - QPoint(1, 1)};
}

QRect CalendarWidget::DayRect(int day) const {
    const PageCell cell = Page().CellOf(day);
    return CellRect(weekdayRow + 1 + cell.week, cell.column);
}

void CalendarWidget::PaintTitle(QPainter& painter) const {
    painter.setFont(shown_.titleFont);
    painter.setPen(QColor(isEnabled() ? look::ink : look::inkDisabled));
    if (!shown_.selectors) return DrawFitting(painter, TitleRect(), TitleOf(Month(0)));
    DrawFitting(painter, selectors_.YearText(), YearText(shown_.year));
    painter.setFont(shown_.titleFont);
    DrawFitting(painter, selectors_.MonthText(), NameOf(Month(0)));
}

void CalendarWidget::PaintWeekdays(QPainter& painter) const {
    const MonthPage page = Page();
    painter.setFont(shown_.dayFont);
    painter.setPen(QColor(look::inkSoft));
    const QLocale::FormatType format =
        WeekdayFormat(locale_, painter.fontMetrics(), GridRect().width() / MonthPage::columns);
    for (int column = 0; column < MonthPage::columns; ++column)
        painter.drawText(CellRect(weekdayRow, column), Qt::AlignCenter,
                         locale_.standaloneDayName(page.WeekdayOf(column), format));
}

// Draws thin lines around the cells, or only one below the weekday names.
void CalendarWidget::PaintGrid(QPainter& painter) const {
    const QRect grid = GridRect();
    const int top = CellRect(weekdayRow + 1, 0).top();
    const QColor line(look::grid);
    painter.fillRect(QRect(grid.left(), top - 1, grid.width(), 1), line);
    if (!shown_.grid) return;
    for (int row = weekdayRow + 2; row <= rows; ++row)
        painter.fillRect(QRect(grid.left(), CellRect(row, 0).top() - 1, grid.width(), 1), line);
    for (int column = 0; column <= MonthPage::columns; ++column)
        painter.fillRect(QRect(CellRect(0, column).left() - 1, top, 1, grid.bottom() - top + 1), line);
}

void CalendarWidget::PaintDay(QPainter& painter, int day) const {
    const QRect cell = DayRect(day), inside = cell.adjusted(1, 1, -2, -2);
    const bool chosen = day == shown_.day, today = day == shown_.today;
    if (chosen)
        DrawBox(painter, inside, look::accent, look::accent);
    else if (day == DayUnderMouse())
        DrawBox(painter, inside, QColor::fromRgba(look::tint), Qt::transparent);
    if (today)
        DrawBox(painter, chosen ? inside.adjusted(1, 1, -1, -1) : inside, Qt::transparent,
                chosen ? look::paper : look::accent);
    if (hasFocus() && !chosen && day == CursorDay()) DrawCursor(painter, inside);
    painter.setFont(chosen || today ? Bold(shown_.gridFont) : shown_.gridFont);
    painter.setPen(QColor(chosen ? look::paper : isEnabled() ? look::ink : look::inkDisabled));
    painter.drawText(cell.adjusted(0, 0, -1, -1), Qt::AlignCenter, QString::number(day));
}

void CalendarWidget::paintEvent(QPaintEvent*) {
    if (!Model()) return;
    QPainter painter(this);
    DrawBox(painter, rect(), look::paper, look::lineSoft);
    PaintTitle(painter);
    PaintWeekdays(painter);
    PaintGrid(painter);
    for (int day = 1; day <= Page().Days(); ++day) PaintDay(painter, day);
    if (hasFocus()) DrawFocus(painter, rect());
}

MonthPage::MonthPage(int year, int month, Qt::DayOfWeek firstDayOfWeek)
    : first_(year, month, 1), firstDayOfWeek_(firstDayOfWeek) {}

int MonthPage::ColumnOfFirst() const {
    return (first_.dayOfWeek() - firstDayOfWeek_ + columns) % columns;
}

PageCell MonthPage::CellOf(int day) const {
    const int place = ColumnOfFirst() + day - 1;
    return {place / columns, place % columns};
}

int MonthPage::WeekdayOf(int column) const {
    return (firstDayOfWeek_ - 1 + column) % columns + 1;
}

QLocale::FormatType WeekdayFormat(const QLocale& locale, const QFontMetrics& metrics, int columnWidth) {
    for (int day = 1; day <= MonthPage::columns; ++day)
        if (metrics.horizontalAdvance(locale.standaloneDayName(day, QLocale::ShortFormat)) > columnWidth)
            return QLocale::NarrowFormat;
    return QLocale::ShortFormat;
}

}  // namespace platform::forms
