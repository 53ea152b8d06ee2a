// help_window.cpp: the manual in a window of its own: contents at the left, text, and a line to find words.
// The manual is docs/manual.md, compiled in. Its headings are the pages that the program can ask for.

#include <algorithm>

#include <QAction>
#include <QDesktopServices>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QScrollBar>
#include <QSplitter>
#include <QStyle>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextFrame>
#include <QTextTable>
#include <QToolBar>

#include "platform/desktop.h"

namespace hexlane::platform {

namespace {

constexpr char MANUAL_FOLDER[] = ":/hexlane/docs";  // the pictures' names begin there
constexpr char MANUAL[] = ":/hexlane/docs/manual.md";
constexpr char ON_HELP_HEADING[] = "About this help window";

struct ContextPage {
    int context;
    const char* heading;
};
constexpr ContextPage CONTEXT_PAGES[] = {{54, "Technical support"}};

constexpr int TEXT_WIDTH = 740;  // logical pixels of a new window
constexpr int CONTENTS_WIDTH = 250;
constexpr int WINDOW_HEIGHT = 620;
constexpr int DEEPEST_HEADING = 3;  // that the contents list

class HelpWindow final : public QMainWindow {
public:
    HelpWindow();
    void go_to_start() { go_to_position(0); }
    void go_to_heading(const QString& heading);

private:
    void give_tables_room();
    void make_tools();
    void list_headings();
    void add_tool(QToolBar* bar, QStyle::StandardPixmap picture, const QString& text, const QKeySequence& key,
                  void (HelpWindow::*action)());
    void go_to_position(int position);
    void show_position(int position);
    void follow_link(const QUrl& link);
    void back();
    void forward();
    void find_next();
    void start_find();
    void update_tools();

    QTextBrowser* text;
    QListWidget* contents;
    QLineEdit* wanted;
    QLabel* find_result;
    QList<QAction*> tools;     // back, forward
    QList<int> visited = {0};  // positions in the text, in order
    qsizetype now = 0;         // index in visited
};

HelpWindow* help_window = nullptr;

// How a link names a heading: small letters, blanks as hyphens, no punctuation.
QString link_name(const QString& heading) {
    QString name;
    for (const QChar letter : heading.toLower()) {
        if (letter.isLetterOrNumber() || letter == '-' || letter == '_') {
            name += letter;
        } else if (letter == ' ') {
            name += '-';
        }
    }
    return name;
}

HelpWindow::HelpWindow() {
    setWindowTitle(QStringLiteral("Hexlane help"));
    setAttribute(Qt::WA_DeleteOnClose);
    connect(this, &QObject::destroyed, [] { help_window = nullptr; });
    contents = new QListWidget;
    contents->setAccessibleName(QStringLiteral("Contents"));
    contents->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    text = new QTextBrowser;
    text->setAccessibleName(QStringLiteral("Manual"));
    text->setOpenLinks(false);
    text->document()->setDocumentMargin(16);
    text->setSearchPaths({QString::fromUtf8(MANUAL_FOLDER)});
    QFile manual(QString::fromUtf8(MANUAL));
    if (manual.open(QIODevice::ReadOnly)) {
        text->setMarkdown(QString::fromUtf8(manual.readAll()));
    }
    give_tables_room();
    // So that the last page can stand at the top of the window as well.
    QTextFrameFormat page = text->document()->rootFrame()->frameFormat();
    page.setBottomMargin(WINDOW_HEIGHT);
    text->document()->rootFrame()->setFrameFormat(page);
    auto* splitter = new QSplitter;
    splitter->addWidget(contents);
    splitter->addWidget(text);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({CONTENTS_WIDTH, TEXT_WIDTH});
    setCentralWidget(splitter);
    make_tools();
    list_headings();
    connect(text, &QTextBrowser::anchorClicked, this, &HelpWindow::follow_link);
    connect(contents, &QListWidget::itemClicked, this,
            [this](const QListWidgetItem* item) { go_to_position(item->data(Qt::UserRole).toInt()); });
    connect(contents, &QListWidget::itemActivated, this,
            [this](const QListWidgetItem* item) { go_to_position(item->data(Qt::UserRole).toInt()); });
    resize(CONTENTS_WIDTH + TEXT_WIDTH, WINDOW_HEIGHT);
    text->setFocus();
}

// Markdown gives the cells of a table no distance from each other.
void HelpWindow::give_tables_room() {
    for (QTextFrame* frame : text->document()->rootFrame()->childFrames()) {
        if (auto* table = qobject_cast<QTextTable*>(frame)) {
            QTextTableFormat format = table->format();
            format.setCellPadding(3);
            format.setCellSpacing(0);
            format.setBorder(0);
            table->setFormat(format);
        }
    }
}

// Keys here belong to this window alone; the editor's window never sees them.
void HelpWindow::add_tool(QToolBar* bar, QStyle::StandardPixmap picture, const QString& label,
                          const QKeySequence& key, void (HelpWindow::*action)()) {
    QAction* tool = bar->addAction(style()->standardIcon(picture), label, this, action);
    tool->setShortcut(key);
    tools.append(tool);
}

void HelpWindow::make_tools() {
    auto* bar = addToolBar(QStringLiteral("Tools"));
    bar->setMovable(false);
    bar->setContextMenuPolicy(Qt::PreventContextMenu);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    add_tool(bar, QStyle::SP_ArrowBack, QStringLiteral("Back"), QKeySequence::Back, &HelpWindow::back);
    add_tool(bar, QStyle::SP_ArrowForward, QStringLiteral("Forward"), QKeySequence::Forward,
             &HelpWindow::forward);
    bar->addSeparator();
    wanted = new QLineEdit;
    wanted->setPlaceholderText(QStringLiteral("Find in the manual"));
    wanted->setAccessibleName(QStringLiteral("Find in the manual"));
    wanted->setClearButtonEnabled(true);
    wanted->setMaximumWidth(TEXT_WIDTH / 2);
    bar->addWidget(wanted);
    add_tool(bar, QStyle::SP_ArrowDown, QStringLiteral("Find next"), QKeySequence::FindNext,
             &HelpWindow::find_next);
    find_result = new QLabel;
    find_result->setIndent(8);
    bar->addWidget(find_result);
    connect(wanted, &QLineEdit::returnPressed, this, &HelpWindow::find_next);
    auto* start = new QAction(this);
    start->setShortcut(QKeySequence::Find);
    connect(start, &QAction::triggered, this, &HelpWindow::start_find);
    addAction(start);
    auto* leave = new QAction(this);
    leave->setShortcut(Qt::Key_Escape);
    connect(leave, &QAction::triggered, this, &QWidget::close);
    addAction(leave);
    update_tools();
}

void HelpWindow::list_headings() {
    for (QTextBlock block = text->document()->begin(); block.isValid(); block = block.next()) {
        const int level = block.blockFormat().headingLevel();
        if (level >= 1 && level <= DEEPEST_HEADING) {
            auto* item = new QListWidgetItem(QString(2 * (level - 1), ' ') + block.text(), contents);
            item->setData(Qt::UserRole, block.position());
            item->setData(Qt::AccessibleTextRole, block.text());
        }
    }
}

void HelpWindow::go_to_heading(const QString& heading) {
    for (QTextBlock block = text->document()->begin(); block.isValid(); block = block.next()) {
        const bool named =
            block.text().compare(heading, Qt::CaseInsensitive) == 0 || link_name(block.text()) == heading;
        if (block.blockFormat().headingLevel() > 0 && named) {
            go_to_position(block.position());
            return;
        }
    }
    go_to_start();
}

void HelpWindow::go_to_position(int position) {
    if (visited[now] != position) {
        visited.resize(now + 1);
        visited.append(position);
        now++;
    }
    show_position(position);
}

// Brings the line to the top of the window, and its heading into the contents.
void HelpWindow::show_position(int position) {
    QTextCursor cursor(text->document());
    cursor.setPosition(position);
    text->setTextCursor(cursor);
    text->verticalScrollBar()->setValue(text->verticalScrollBar()->value() + text->cursorRect(cursor).top() -
                                        static_cast<int>(text->document()->documentMargin()) / 2);
    for (int row = 0; row < contents->count(); row++) {
        if (contents->item(row)->data(Qt::UserRole).toInt() == position) {
            contents->setCurrentRow(row);
        }
    }
    update_tools();
}

void HelpWindow::follow_link(const QUrl& link) {
    if (link.hasFragment() && link.path().isEmpty()) {
        go_to_heading(link.fragment());
    } else if (link.scheme().startsWith(QStringLiteral("http"))) {
        QDesktopServices::openUrl(link);
    }
}

void HelpWindow::back() {
    show_position(visited[--now]);
}

void HelpWindow::forward() {
    show_position(visited[++now]);
}

void HelpWindow::update_tools() {
    tools[0]->setEnabled(now > 0);
    tools[1]->setEnabled(now + 1 < visited.size());
}

void HelpWindow::start_find() {
    wanted->setFocus();
    wanted->selectAll();
}

// Goes round to the start at the end of the text.
void HelpWindow::find_next() {
    if (wanted->text().isEmpty()) {
        start_find();
        return;
    }
    bool found = text->find(wanted->text());
    if (!found) {
        QTextCursor start(text->document());
        text->setTextCursor(start);
        found = text->find(wanted->text());
    }
    find_result->setText(found ? QString() : QStringLiteral("Not found"));
}

QString heading_of(int context) {
    const auto page = std::find_if(std::begin(CONTEXT_PAGES), std::end(CONTEXT_PAGES),
                                   [context](const ContextPage& line) { return line.context == context; });
    return page == std::end(CONTEXT_PAGES) ? QString() : QString::fromUtf8(page->heading);
}

}  // namespace

void show_help(HelpRequest request, int context) {
    if (request == HelpRequest::QUIT) {
        delete help_window;
        return;
    }
    if (help_window == nullptr) {
        help_window = new HelpWindow;
    }
    help_window->showNormal();
    help_window->raise();
    help_window->activateWindow();
    switch (request) {
    case HelpRequest::ON_HELP:
        help_window->go_to_heading(QString::fromUtf8(ON_HELP_HEADING));
        break;
    case HelpRequest::CONTEXT:
        help_window->go_to_heading(heading_of(context));
        break;
    case HelpRequest::CONTENTS:
    case HelpRequest::QUIT:
        help_window->go_to_start();
        break;
    }
}

}  // namespace hexlane::platform
