// SPDX-License-Identifier: MIT
// One table of what matters, in two minutes: each row with its size, its figure, how that grows,
// and its ratio to something known, which is measured in turns with it (the bytes of a box, which
// are the same each time, once). The other programs of this folder have the details.
#include "Child.h"
#include "Database.h"
#include "Hosted.h"
#include "Measure.h"
#include "Pages.h"
#include "Scene.h"
#include "Statements.h"
#include "Texts.h"
#include "criteria/ORVQDWherePanel.h"
#include "diagram/ORVQDFloatTable.h"
#include "parser/ORVQDParser.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>

#include <array>
#include <cmath>
#include <cstdio>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

using namespace bench;

constexpr double secondsARow = 7;
constexpr double mostGrowth = 1.15;

// --- the table ---

enum class Unit { Seconds, Bytes };

/// What is told of one row. What is 0 is not told.
struct Row {
    const char* what;
    const char* size;
    const char* yardstick;
    Figures figures;
    double mostRatio = 0;
    bool isGrowing = true;
    Unit unit = Unit::Seconds;
};

/// Three digits that matter.
std::string inDigits(double value, const char* unit) {
    const int decimals = value < 9.995 ? 2 : (value < 99.95 ? 1 : 0);
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.*f %s", decimals, value, unit);
    return text.data();
}

std::string withUnit(double value, Unit unit) {
    if (unit == Unit::Seconds) {
        if (value < 1e-3) return inDigits(value * 1e6, "us");
        return value < 1 ? inDigits(value * 1e3, "ms") : inDigits(value, "s");
    }
    return value < 1e6 ? inDigits(value / 1e3, "KB") : inDigits(value / 1e6, "MB");
}

std::string number(double value, const char* format = "%.2f") {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}

// What is lacking comes first: a row may miss one aim and meet the other.
std::string aimOf(const Row& row) {
    std::string missed;
    std::string met;
    const auto add = [&](bool isMet, const std::string& aim) {
        std::string& list = isMet ? met : missed;
        list += (list.empty() ? "" : ", ") + aim;
    };
    if (row.mostRatio > 0) {
        add(row.figures.ratio <= row.mostRatio, "ratio " + number(row.mostRatio, "%g"));
    }
    if (row.isGrowing) add(row.figures.growth <= mostGrowth, "growth " + number(mostGrowth, "%g"));
    if (!missed.empty()) missed = "MISSED: " + missed + (met.empty() ? "" : "; ");
    return missed + (met.empty() ? "" : "met: " + met);
}

void printLine(const char* what, const char* size, const char* figure, const char* growth,
               const char* ratio, const char* yardstick, const char* aim) {
    std::printf("%-23s  %-44s  %9s  %6s  %6s  %-38s  %s\n", what, size, figure, growth, ratio,
                yardstick, aim);
    std::fflush(stdout);
}

void print(const Row& row) {
    const Figures& figures = row.figures;
    const std::string yardstick =
        std::string(row.yardstick) + ", " + withUnit(figures.yardstick, row.unit);
    printLine(row.what, row.size, withUnit(figures.subject, row.unit).c_str(),
              row.isGrowing ? number(figures.growth).c_str() : "", number(figures.ratio).c_str(),
              yardstick.c_str(), aimOf(row).c_str());
}

void tellProgress(const char* what) {
    std::fprintf(stderr, "measuring: %s\n", what);
}

// --- statements: twenty tables and sixty conditions, and their multiples ---

const std::vector<int> tableCounts = {20, 40, 80, 160, 320};
const char* const statementSize = "20 tables, 60 conditions (to 320)";

Work preparing(const QString& text) {
    return {[bytes = text.toUtf8()] { return prepare(bytes); }};
}

/// Two statements that take turns, so that none is loaded where it lies already.
class Turns {
public:
    explicit Turns(int tables) : m_text(ofTables(tables)) {}

    QString next() {
        m_isOther = !m_isOther;
        return m_isOther ? m_text + QStringLiteral(" AND (A1.ID > 0)") : m_text;
    }

private:
    QString m_text;
    bool m_isOther = false;
};

Pair parsing(int tables) {
    const QString text = ofTables(tables);
    return {{[text] { return TorvQDParser(text).Count() > 0; }}, preparing(text)};
}

Pair loading(int tables) {
    auto hosted = std::make_shared<Hosted>(0);
    return {{[hosted, turns = Turns(tables)]() mutable { return hosted->load(turns.next()); },
             [hosted] { hosted->builder.Clear(); }},
            preparing(ofTables(tables))};
}

Pair writing(int tables) {
    auto hosted = std::make_shared<Hosted>(0);
    const bool isLoaded = hosted->load(ofTables(tables));
    return {{[=] { return isLoaded && !hosted->builder.GetSQLStatment().isEmpty(); }},
            preparing(ofTables(tables))};
}

Pair loadingAndWriting(int tables) {
    auto hosted = std::make_shared<Hosted>(0);
    return {{[hosted, turns = Turns(tables)]() mutable {
                return hosted->load(turns.next()) && !hosted->builder.GetSQLStatment().isEmpty();
            }},
            preparing(ofTables(tables))};
}

Pair clearing(int tables) {
    auto hosted = std::make_shared<Hosted>(0);
    auto shown = std::make_shared<Hosted>(0);
    auto scene = std::make_shared<std::unique_ptr<Scene>>();
    const QString text = ofTables(tables);
    const bool isShown = shown->load(text);
    return {{[=] {
                 hosted->builder.Clear();
                 return hosted->builder.ListOfTables->TablesCount() == 0;
             },
             [=] { (void)hosted->load(text); }},
            {[=] {
                 (*scene)->clear();
                 return isShown && (*scene)->scene.items().isEmpty();
             },
             [=] { *scene = std::make_unique<Scene>(*shown->builder.WorkArea); }}};
}

// --- the diagram and the pages ---

Pair ticking(int rows) {
    auto builder = std::make_shared<TorvQueryBuilder>();
    auto scene = std::make_shared<SceneOfTicks>(rows);
    TorvQDTable* box = builder->ListOfTables->AddTable(QStringLiteral("T"), fields(rows));
    return {{[=] {
                (void)builder;
                box->SetFieldState(2);
                box->SetFieldState(0);
                return true;
            }},
            {[=] {
                scene->tickAll();
                scene->untickAll();
                return true;
            }}};
}

/// A diagram with the scene of it, and what is in the hand: that is let go first.
struct Both {
    Diagram diagram;
    std::unique_ptr<Scene> scene;
    std::unique_ptr<BoxDrag> box;
    std::unique_ptr<ItemDrag> item;

    void showScene() {
        scene = std::make_unique<Scene>(*diagram.area());
        scene->show();
    }
};

// Taken into the hand when everything is there.
Pair dragging(int boxes) {
    auto both = std::make_shared<Both>();
    both->diagram.fillAround(boxes);
    both->showScene();
    return {{[both] {
                if (!both->box) both->box = std::make_unique<BoxDrag>(both->diagram);
                return both->box->step();
            }},
            {[both] {
                if (!both->item) both->item = std::make_unique<ItemDrag>(*both->scene);
                return both->item->step();
            }}};
}

Pair repainting(int boxes) {
    auto both = std::make_shared<Both>();
    both->diagram.fillView(boxes);
    both->showScene();
    QWidget* view = both->scene->scene.views().front()->viewport();
    auto ours = std::make_shared<RenderedView>(both->diagram.view());
    auto theirs = std::make_shared<RenderedView>(view);
    const auto rendering = [both](const std::shared_ptr<RenderedView>& rendered) {
        return Work{[both, rendered] {
            rendered->render();
            return true;
        }};
    };
    return {rendering(ours), rendering(theirs)};
}

Pair relaying(int conditions) {
    auto pages = std::make_shared<ShownPages>(criterions);
    pages->loadConditions(conditions);
    auto scene = std::make_shared<SceneOfConditions>(*pages->builder.WherePanel);
    return {{[=] {
                pages->relayConditions();
                return true;
            }},
            {[=] {
                scene->relay();
                return true;
            }}};
}

struct TimedRow {
    const char* what;
    const char* size;
    const char* yardstick;
    Growing growing;
    double mostRatio = 0;
};

const std::vector<TimedRow>& timedRows() {
    static const char* const sqlite = "sqlite3_prepare_v2";
    static const std::vector<TimedRow> rows = {
        {"parse", statementSize, sqlite, {tableCounts, largeTables, parsing}, 0.25},
        {"load", statementSize, sqlite, {tableCounts, largeTables, loading}},
        {"write", statementSize, sqlite, {tableCounts, largeTables, writing}},
        {"load and write",
         statementSize,
         sqlite,
         {tableCounts, largeTables, loadingAndWriting},
         10},
        {"clear", statementSize, "QGraphicsScene::clear", {tableCounts, largeTables, clearing}},
        {"tick all, and untick",
         "1,000 rows (250 to 4,000)",
         "the same in a QGraphicsScene",
         {{250, 500, 1000, 2000, 4000}, 1000, ticking}},
        {"drag step",
         "500 boxes, 1,000 links (from 10)",
         "the same in a QGraphicsScene",
         {{10, 100, 500}, 500, dragging}},
        {"repaint",
         "500 boxes, 40 in sight (from 40)",
         "the same in a QGraphicsScene",
         {{40, 100, 500}, 500, repainting}},
        {"condition relay",
         "1,000 conditions (250 to 4,000)",
         "the same in a QGraphicsScene",
         {{250, 500, 1000, 2000, 4000}, 1000, relaying}},
    };
    return rows;
}

// --- bytes of a box ---

#ifdef __GLIBC__
double heapBytes() {
    const struct mallinfo2 info = mallinfo2();
    return double(info.uordblks) + double(info.hblkhd);
}

/// Bytes of one box, and of one item of a scene that shows the same.
Row heapOfBoxes() {
    const std::vector<int> counts = {50, 100, 200, 400};
    std::vector<double> ours;
    double scenes = 0;
    for (const int count : counts) {
        Diagram diagram;
        const double empty = heapBytes();
        for (int box = 0; box < count; ++box) {
            // Names of their own, as different tables have them.
            diagram.add({0, 0}, {145, 400}, fields(boxRows, QStringLiteral("FIELD_")));
        }
        QCoreApplication::processEvents();
        const double filled = heapBytes();
        const Scene scene(*diagram.area());
        scenes = (heapBytes() - filled) / count;
        ours.push_back(filled - empty);
    }
    const double each = ours.back() / counts.back();
    return {"bytes of a box",
            "20 rows, of 400 boxes (50 to 400)",
            "an item of a QGraphicsScene",
            {each, scenes, each / scenes, fittedGrowth(counts, ours)},
            0,
            true,
            Unit::Bytes};
}
#endif

// --- programs ---

const char* const diagramOption = "--diagram";

/// The program that one row starts: a diagram of so many tables, shown.
int showDiagram(int tables) {
    Hosted hosted(0);
    hosted.builder.resize(viewSize);
    hosted.builder.show();
    if (tables > 0 && !hosted.load(treeOfTables(tables))) return 1;
    QCoreApplication::processEvents();
    return 0;
}

ChildUse run(const std::vector<std::string>& command) {
    const ChildUse use = runChild(command);
    if (use.hasSucceeded) return use;
    std::fprintf(stderr, "%s failed.\n", command.front().c_str());
    std::exit(1);
}

const std::vector<std::string> emptyApplication = {BENCH_EMPTY_APPLICATION};

using Command = std::vector<std::string>;

struct Starts {
    const char* size;
    Command command;
    const char* yardstick = "an empty QApplication";
};

/// A program's start beside that of the empty application.
Row startOf(const Starts& starts) {
    constexpr int rounds = 25;
    std::vector<double> ours;
    std::vector<double> theirs;
    std::vector<double> ratios;
    (void)run(starts.command);  // the sample database is made once
    for (int round = 0; round < rounds; ++round) {
        ours.push_back(run(starts.command).processorSeconds);
        theirs.push_back(run(emptyApplication).processorSeconds);
        ratios.push_back(ours.back() / theirs.back());
    }
    return {"orvquery --print",
            starts.size,
            starts.yardstick,
            {median(ours), median(theirs), median(ratios), 0},
            1.5,
            false};
}

/// How the start grows with the schema: of what it takes beyond the first of the commands.
double growthOfStart(const Command& least, const std::vector<int>& tables,
                     const std::vector<Command>& commands) {
    constexpr int rounds = 9;
    std::vector<std::vector<double>> beyond(commands.size());
    for (int round = 0; round < rounds; ++round) {
        const double none = run(least).processorSeconds;
        for (std::size_t index = 0; index < commands.size(); ++index) {
            beyond[index].push_back(run(commands[index]).processorSeconds - none);
        }
    }
    std::vector<double> medians;
    for (const std::vector<double>& of : beyond) medians.push_back(median(of));
    return fittedGrowth(tables, medians);
}

Row peakMemory(const std::string& program) {
    constexpr int rounds = 5;
    const std::vector<int> counts = {125, 250, 500};
    std::vector<double> empty;
    std::vector<std::vector<double>> beyond(counts.size());
    std::vector<double> peaksOfMost;
    for (int round = 0; round < rounds; ++round) {
        const double none = run({program, diagramOption, "0"}).peakBytes;
        empty.push_back(run(emptyApplication).peakBytes);
        for (std::size_t index = 0; index < counts.size(); ++index) {
            const std::string count = std::to_string(counts[index]);
            const double peak = run({program, diagramOption, count}).peakBytes;
            beyond[index].push_back(peak - none);
            if (index + 1 == counts.size()) peaksOfMost.push_back(peak);
        }
    }
    std::vector<double> peaks;
    for (const std::vector<double>& of : beyond) peaks.push_back(median(of));
    const double peak = median(peaksOfMost);
    return {"peak memory",
            "500 tables, 1,000 links (from 125)",
            "an empty QApplication",
            {peak, median(empty), peak / median(empty), fittedGrowth(counts, peaks)},
            0,
            true,
            Unit::Bytes};
}

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size()) return;
    std::fprintf(stderr, "%s cannot be written.\n", qPrintable(path));
    std::exit(1);
}

const char* const sampleTables = R"({
    "customers": [["customer_no", "ftInteger"], ["name", "ftString"], ["city", "ftString"],
                  ["credit_limit", "ftFloat"]],
    "orders": [["order_no", "ftInteger"], ["customer_no", "ftInteger"], ["status", "ftString"]],
    "items": [["order_no", "ftInteger"], ["quantity", "ftInteger"], ["unit_price", "ftFloat"]]
})";

/// The tables of the sample query, and so many others.
QByteArray schemaOf(int tables) {
    QByteArray text = QByteArray(sampleTables).trimmed();
    text.chop(1);
    for (int table = 0; table < tables; ++table) {
        text += ",\n\"t" + QByteArray::number(table) +
                R"(": [["id", "ftInteger"], ["name", "ftString"], ["amount", "ftFloat"]])";
    }
    return text + "}";
}

/// In a folder of its own, where the sample database is made, too.
std::vector<Row> programs(const std::string& program) {
    const QTemporaryDir folder;
    qputenv("XDG_DATA_HOME", folder.path().toUtf8());
    qputenv("QT_LOGGING_RULES", "*.warning=false");  // what else they say is of interest
    const QString schema = folder.filePath(QStringLiteral("schema.json"));
    writeFile(schema, sampleTables);
    const std::string orvquery = BENCH_ORVQUERY;
    const std::string query = BENCH_SAMPLE_QUERY;
    const auto printWith = [&](const QString& path) {
        return Command{orvquery, "--schema", path.toStdString(), "--load", query, "--print"};
    };
    Row start = startOf({"a schema file (and of 1,000 to 4,000 tables)", printWith(schema)});
    const std::vector<int> tables = {1000, 2000, 4000};
    std::vector<Command> commands;
    for (const int count : tables) {
        const QString path = folder.filePath(QStringLiteral("schema%1.json").arg(count));
        writeFile(path, schemaOf(count));
        commands.push_back(printWith(path));
    }
    start.figures.growth = growthOfStart(printWith(schema), tables, commands);
    start.isGrowing = true;
    const Row sample =
        startOf({"the sample database and query", {orvquery, "--load", query, "--print"}});
    // Without a display's libraries, an application that does nothing starts sooner, too.
    qputenv("QT_QPA_PLATFORM", "minimal");
    const Row alike = startOf({"a schema file, both on one platform", printWith(schema),
                               "an empty QApplication, minimal"});
    qunsetenv("QT_QPA_PLATFORM");
    return {start, sample, alike, peakMemory(program)};
}

}  // namespace

int main(int argc, char** argv) {
    // Each program chooses by itself where nobody has chosen for it.
    qunsetenv("QT_QPA_PLATFORM");
    if (argc == 3 && qstrcmp(argv[1], diagramOption) == 0) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        const QApplication application(argc, argv);
        return showDiagram(std::atoi(argv[2]));
    }
    tellProgress("programs");
    // While this program is small: what a parent holds counts for its children.
    const std::vector<Row> ofPrograms = programs(argv[0]);

    qputenv("QT_QPA_PLATFORM", "offscreen");
    // The toolkit has something to say about its surroundings with each window.
    QLoggingCategory::setFilterRules(QStringLiteral("*.warning=false"));
    const QApplication application(argc, argv);
    printLine("what", "size (and of the growth)", "figure", "growth", "ratio", "to", "aim");
    for (const TimedRow& row : timedRows()) {
        tellProgress(row.what);
        print(
            {row.what, row.size, row.yardstick, measure(row.growing, secondsARow), row.mostRatio});
    }
    for (const Row& row : ofPrograms) print(row);
#ifdef __GLIBC__
    print(heapOfBoxes());
#endif
    return 0;
}
