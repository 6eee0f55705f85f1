// SPDX-License-Identifier: MIT
// The plugin as Qt Designer uses it: palette, form, properties, what is written, undo.
#include "designer/FormFile.h"
#include "designer/Workbench.h"
#include "support/TestTools.h"
#include "toolkit/Services.h"

#include <QAction>
#include <QImage>
#include <QLabel>
#include <QSplitter>
#include <QTabWidget>
#include <QTest>
#include <QtDesigner/QDesignerFormWindowCursorInterface>

using orvtest::Workbench;

namespace {

QString formXml(const QString& name, const QString& value) {
    return QStringLiteral("<property name=\"%1\">%2</property>").arg(name, value);
}

QString stringList(const QStringList& texts, const QString& attributes = {}) {
    QString xml = QStringLiteral("<stringlist%1>").arg(attributes);
    for (const QString& text : texts) {
        xml += QStringLiteral("<string>%1</string>").arg(text.toHtmlEscaped());
    }
    return xml + QStringLiteral("</stringlist>");
}

const QStringList oneOperator{"~", "is like", "", "", "", "1"};

}  // namespace

class TestDesigner : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        QCoreApplication::addLibraryPath(QStringLiteral(ORV_PLUGIN_PATH));
        m_bench = std::make_unique<Workbench>();
        m_defaults = TorvQueryBuilder().OperatorsList();
    }
    // But for what this platform has no use for.
    void init() {
        QTest::failOnWarning(QRegularExpression(
            QStringLiteral("^(?!QOpenGLWidget is not supported|This plugin does not support)")));
    }
    void cleanupTestCase() { m_bench.reset(); }

    // --- the palette

    void paletteHasThePageWithTheControl() {
        QDesignerWidgetBoxInterface* box = m_bench->core->widgetBox();
        QStringList names;
        for (int index = 0; index < box->categoryCount(); ++index) {
            const QDesignerWidgetBoxInterface::Category category = box->category(index);
            if (category.name() != "ORV Software") continue;
            for (int at = 0; at < category.widgetCount(); ++at) {
                names << category.widget(at).name();
            }
        }
        QCOMPARE(names, QStringList{"Query Builder"});
    }

    void dataBaseKnowsTheControl() {
        QDesignerWidgetDataBaseInterface* base = m_bench->core->widgetDataBase();
        const int index = base->indexOfClassName(QStringLiteral("TorvQueryBuilder"));
        QVERIFY(index >= 0);
        const QDesignerWidgetDataBaseItemInterface* item = base->item(index);
        QCOMPARE(item->group(), "ORV Software");
        QCOMPARE(item->includeFile(), "orvquerybuilder/ORVQDWindow.h");
        QCOMPARE(item->extends(), "QFrame");
        QVERIFY(!item->isContainer());
        QVERIFY(!item->toolTip().isEmpty());
        QVERIFY(!item->whatsThis().isEmpty());
    }

    void iconIsDrawnForEveryScale_data() {
        QTest::addColumn<qreal>("scale");
        QTest::newRow("1x") << 1.0;
        QTest::newRow("2x") << 2.0;
    }
    void iconIsDrawnForEveryScale() {
        QFETCH(qreal, scale);
        QDesignerWidgetDataBaseInterface* base = m_bench->core->widgetDataBase();
        const QIcon icon =
            base->item(base->indexOfClassName(QStringLiteral("TorvQueryBuilder")))->icon();
        const QImage image = icon.pixmap(QSize(22, 22), scale).toImage();
        QCOMPARE(image.size(), QSize(22, 22) * scale);
        QCOMPARE(image.devicePixelRatio(), scale);
        // A table's frame is one sharp line at 1x and two pixels wide at 2x.
        const int y = int(11 * scale);
        const QColor frame("#4a6785");
        for (int x = 0; x < int(scale); ++x) {
            QCOMPARE(QColor(image.pixel(int(scale) + x, y)), frame);
        }
        QCOMPARE(qAlpha(image.pixel(int(scale) - 1, y)), 0);
        QCOMPARE(QColor(image.pixel(int(2 * scale), y)), QColor(Qt::white));
    }

    void controlFromThePaletteIsPutOnAForm() {
        QString xml = paletteXml();
        QVERIFY(!xml.isEmpty());
        const qsizetype first = xml.indexOf(QLatin1String("<widget"));
        const qsizetype end = xml.indexOf(QLatin1String("</widget>")) + 9;
        openForm(QStringLiteral("<ui version=\"4.0\"><widget class=\"QWidget\" name=\"Form\">") +
                 xml.mid(first, end - first) + QStringLiteral("</widget></ui>"));
        QVERIFY(builder());
        QCOMPARE(builder()->size(), QSize(480, 320));
        QCOMPARE(builder()->objectName(), "queryBuilder");
        // Nothing was set, and nothing but its place is written.
        QCOMPARE(written().keys(), QStringList{"geometry"});
        QCOMPARE(builder()->OperatorsList(), m_defaults);
    }

    // --- on the form

    void formShowsEmptyPagesBelowThePlaceOfTheDiagram() {
        openForm(Workbench::formWith({}));
        QVERIFY(!builder()->WorkArea && !builder()->ListOfTables && !builder()->SelectPanel &&
                !builder()->WherePanel && !builder()->HavingPanel && !builder()->OrderPanel);
        QCOMPARE(builder()->PageCtrl->count(), 4);
        m_bench->form->setGeometry(0, 0, 800, 600);
        m_bench->desk.show();
        QCoreApplication::processEvents();
        QCOMPARE(builder()->Splitter->count(), 2);
        auto* place = qobject_cast<QLabel*>(builder()->Splitter->widget(0));
        QVERIFY(place && !place->text().isEmpty());
        QCOMPARE(builder()->PageCtrl->height(), 100);
        // The place of the diagram has the rest but for frame and splitter.
        QCOMPARE(place->height(), 400 - 2 - 5 - 100);
        set("TabsHeight", 150);
        QCOMPARE(builder()->PageCtrl->height(), 150);
        m_bench->desk.hide();
    }

    void smallControlStillHasItsPages() {
        openForm(Workbench::formWith({}));
        builder()->resize(40, 30);
        m_bench->desk.show();
        QCoreApplication::processEvents();
        QCOMPARE(builder()->size(), QSize(40, 30));
        QVERIFY(!builder()->grab().isNull());
        m_bench->desk.hide();
    }

    void innerPartsAreNoPartsOfTheForm() {
        openForm(Workbench::formWith({}));
        QVERIFY(m_bench->form->isManaged(builder()));
        const QString contents = m_bench->form->contents();
        QVERIFY(!contents.contains("PageCtrl"));
        QVERIFY(!contents.contains("QSplitter"));
        QVERIFY(!contents.contains("DiagramPlace"));
        QVERIFY(!contents.contains("<layout"));
    }

    void formNamesTheHeaderOfTheControl() {
        openForm(Workbench::formWith({}));
        const QString contents = m_bench->form->contents().simplified().remove(u' ');
        QVERIFY(
            contents.contains("<customwidget><class>TorvQueryBuilder</class>"
                              "<extends>QFrame</extends>"
                              "<header>orvquerybuilder/ORVQDWindow.h</header></customwidget>"));
    }

    // --- properties

    void propertyIsShownSetWrittenReadAndReset_data() {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("xml");
        const auto row = [](const char* name, const QVariant& value, const char* xml) {
            QTest::newRow(name) << value << QString::fromLatin1(xml);
        };
        row("Align", int(TorvQueryBuilder::alClient), "<enum>TorvQueryBuilder::alClient</enum>");
        row("TabsHeight", 140, "<number>140</number>");
        row("KeepMeaning", true, "<bool>true</bool>");
        row("TailText", "LIMIT 5", "<string>LIMIT 5</string>");
        row("WorkAreaHideSelection", false, "<bool>false</bool>");
        row("WorkAreaDragFieldName", true, "<bool>true</bool>");
        row("WorkAreaFlat", true, "<bool>true</bool>");
        row("WorkAreaShowFieldsType", true, "<bool>true</bool>");
        row("WorkAreaFlatCaptionBtns", false, "<bool>false</bool>");
        row("WorkAreaTableBorder", int(edgeSunken),
            "<enum>TorvQDWorkAreaOptions::edgeSunken</enum>");
        row("WorkAreaFont", QFont(QStringLiteral("Courier"), 13),
            "<font><family>Courier</family><pointsize>13</pointsize></font>");
        row("WorkAreaTableColor", QColor(1, 2, 3),
            "<color><red>1</red><green>2</green><blue>3</blue></color>");
        row("WorkAreaProcedureColor", QColor(4, 5, 6),
            "<color><red>4</red><green>5</green><blue>6</blue></color>");
        row("ConditionSelectRow", false, "<bool>false</bool>");
        row("ConditionBtnsStyle", int(btnRaise), "<enum>TorvQDConditionOptions::btnRaise</enum>");
        row("ConditionActiveRowColor", QColor(7, 8, 9),
            "<color><red>7</red><green>8</green><blue>9</blue></color>");
        row("OperatorsList", oneOperator,
            "<stringlist><string>~</string><string>is like</string><string></string>"
            "<string></string><string></string><string>1</string></stringlist>");
    }
    void propertyIsShownSetWrittenReadAndReset() {
        QFETCH(QVariant, value);
        QFETCH(QString, xml);
        const char* name = QTest::currentDataTag();
        openForm(Workbench::formWith({}));
        const int index = m_bench->sheet()->indexOf(QLatin1String(name));
        QVERIFY(index >= 0);
        QVERIFY(m_bench->sheet()->isVisible(index));
        QVERIFY(!m_bench->sheet()->isChanged(index));
        QCOMPARE(m_bench->sheet()->propertyGroup(index), "TorvQueryBuilder");
        const QVariant initial = builder()->property(name);
        QVERIFY(!isSame(initial, value));

        set(name, value);
        QVERIFY(isSame(builder()->property(name), value));
        QVERIFY(m_bench->sheet()->isChanged(index));
        QVERIFY(m_bench->form->isDirty());
        QCOMPARE(written().value(QLatin1String(name)), xml);

        m_bench->form->commandHistory()->undo();
        QVERIFY(isSame(builder()->property(name), initial));
        QVERIFY(!m_bench->sheet()->isChanged(index));
        m_bench->form->commandHistory()->redo();
        QVERIFY(isSame(builder()->property(name), value));

        const QString saved = m_bench->form->contents();
        openForm(saved);
        QVERIFY(isSame(builder()->property(name), value));
        QCOMPARE(m_bench->form->contents(), saved);

        m_bench->form->cursor()->resetWidgetProperty(builder(), QLatin1String(name));
        QVERIFY(isSame(builder()->property(name), initial));
        QVERIFY(!m_bench->sheet()->isChanged(index));
        QVERIFY(!written().contains(QLatin1String(name)));
    }

    // The palette's, until a colour is set.
    void resetProcedureColorFollowsThePaletteAgain() {
        openForm(Workbench::formWith({}));
        set("WorkAreaProcedureColor", QColor(Qt::red));
        m_bench->form->cursor()->resetWidgetProperty(builder(),
                                                     QStringLiteral("WorkAreaProcedureColor"));
        const QPalette old = QGuiApplication::palette();
        QPalette other = old;
        other.setColor(QPalette::ToolTipBase, Qt::green);
        QGuiApplication::setPalette(other);
        const QColor shown = builder()->WorkAreaProcedureColor();
        QGuiApplication::setPalette(old);
        QCOMPARE(shown, QColor(Qt::green));
    }

    void heightThatIsIgnoredIsNotWritten() {
        openForm(Workbench::formWith({}));
        set("TabsHeight", 60);
        QCOMPARE(builder()->TabsHeight(), 100);
        QVERIFY(!written().contains("TabsHeight"));
    }

    void optionObjectsAreNotShownAndNotWritten() {
        openForm(Workbench::formWith({}));
        for (const char* name : {"WorkAreaOptions", "ConditionOptions", "Operators"}) {
            const int index = m_bench->sheet()->indexOf(QLatin1String(name));
            QVERIFY2(index >= 0 && !m_bench->sheet()->isVisible(index), name);
            QVERIFY2(!written().contains(QLatin1String(name)), name);
        }
    }

    void tailTextIsWrittenOnlyWhenThereIsOne() {
        openForm(Workbench::formWith(formXml("TailText", "<string notr=\"true\"/>")));
        QVERIFY(!written().contains("TailText"));
        openForm(
            Workbench::formWith(formXml("TailText", "<string notr=\"true\">LIMIT 1</string>")));
        QCOMPARE(written().value("TailText"), "<string notr=\"true\">LIMIT 1</string>");
    }

    void copyHasThePropertiesOfTheOriginal() {
        openForm(Workbench::formWith(formXml("OperatorsList", stringList(oneOperator)) +
                                     formXml("WorkAreaFlat", "<bool>true</bool>")));
        m_bench->form->clearSelection();
        m_bench->form->selectWidget(builder());
        QDesignerFormWindowManagerInterface* manager = m_bench->core->formWindowManager();
        QAction* copy = manager->action(QDesignerFormWindowManagerInterface::CopyAction);
        QAction* paste = manager->action(QDesignerFormWindowManagerInterface::PasteAction);
        QTRY_VERIFY(copy->isEnabled());
        copy->trigger();
        QTRY_VERIFY(paste->isEnabled());
        paste->trigger();
        const auto builders = m_bench->form->findChildren<TorvQueryBuilder*>();
        QCOMPARE(builders.size(), 2);
        for (const TorvQueryBuilder* each : builders) {
            QCOMPARE(each->OperatorsList(), oneOperator);
            QVERIFY(each->WorkAreaFlat());
            QVERIFY(!each->WorkArea);
        }
        QVERIFY(builders[0]->objectName() != builders[1]->objectName());
    }

    // --- operators

    void defaultOperatorsAreNotWritten() {
        openForm(Workbench::formWith(formXml("OperatorsList", stringList(m_defaults))));
        QCOMPARE(builder()->OperatorsList(), m_defaults);
        QVERIFY(!written().contains("OperatorsList"));
    }

    void emptyListInAFormKeepsTheDefaults() {
        openForm(Workbench::formWith(formXml("OperatorsList", "<stringlist/>")));
        QCOMPARE(builder()->OperatorsList(), m_defaults);
        QVERIFY(!written().contains("OperatorsList"));
    }

    void operatorsBroughtBackToTheDefaultsAreNotWritten() {
        openForm(Workbench::formWith(formXml("OperatorsList", stringList(oneOperator))));
        QVERIFY(written().contains("OperatorsList"));
        set("OperatorsList", m_defaults);
        QVERIFY(!written().contains("OperatorsList"));
    }

    void operatorsStayUntranslatedWhenTheyAreEdited() {
        openForm(Workbench::formWith(
            formXml("OperatorsList", stringList(oneOperator, QStringLiteral(" notr=\"true\"")))));
        set("OperatorsList", m_defaults.mid(0, 6));
        QVERIFY(written().value("OperatorsList").startsWith("<stringlist notr=\"true\">"));
    }

    void operatorsOfAControlFromThePaletteAreNotTranslated() {
        controlFromThePaletteIsPutOnAForm();
        set("OperatorsList", oneOperator);
        QCOMPARE(written().value("OperatorsList"),
                 stringList(oneOperator, QStringLiteral(" notr=\"true\"")));
    }

    // --- "Edit operators..."

    void editingOperatorsIsACommandOfTheForm() {
        orvtest::RecordedServices services;
        services.onDialog = [](QDialog& dialog) {
            auto& editor = dynamic_cast<TorvQDOperatorsPropertyDlg&>(dialog);
            while (editor.Operators.Count() > 1) editor.Operators.Delete(1);
            return int(QDialog::Accepted);
        };
        openForm(Workbench::formWith({}));
        QVERIFY(!m_bench->form->isDirty());
        QAction* edit = m_bench->taskMenu()->preferredEditAction();
        QCOMPARE(m_bench->taskMenu()->taskActions(), QList<QAction*>{edit});
        QCOMPARE(edit->text(), "Edit operators...");

        edit->trigger();
        QCOMPARE(services.dialogs, QStringList{"Operator properties - queryBuilder.Operators"});
        QCOMPARE(builder()->OperatorsList(), m_defaults.mid(0, 6));
        QVERIFY(m_bench->form->isDirty());
        QCOMPARE(m_bench->form->commandHistory()->count(), 1);
        m_bench->form->commandHistory()->undo();
        QCOMPARE(builder()->OperatorsList(), m_defaults);
        QVERIFY(!m_bench->form->isDirty());
        m_bench->form->commandHistory()->redo();
        QCOMPARE(builder()->OperatorsList(), m_defaults.mid(0, 6));
        QVERIFY(written().contains("OperatorsList"));
    }

    void cancelledAndUnchangedOperatorsAreNoCommand() {
        orvtest::RecordedServices services;
        openForm(Workbench::formWith({}));
        m_bench->taskMenu()->preferredEditAction()->trigger();
        QCOMPARE(services.dialogs.size(), 1);
        services.onDialog = [](QDialog&) { return int(QDialog::Accepted); };
        m_bench->taskMenu()->preferredEditAction()->trigger();
        QCOMPARE(services.dialogs.size(), 2);
        QCOMPARE(m_bench->form->commandHistory()->count(), 0);
        QVERIFY(!m_bench->form->isDirty());
    }

    // Then the form holds none, and has the defaults when it is read.
    void deletedOperatorsAreNotWrittenAndCanComeBack() {
        orvtest::RecordedServices services;
        services.onDialog = [](QDialog& dialog) {
            dynamic_cast<TorvQDOperatorsPropertyDlg&>(dialog).Operators.Clear();
            return int(QDialog::Accepted);
        };
        openForm(Workbench::formWith(formXml("OperatorsList", stringList(oneOperator))));
        m_bench->core->propertyEditor()->setObject(builder());  // it shows each of these states
        m_bench->taskMenu()->preferredEditAction()->trigger();
        QCOMPARE(builder()->OperatorsList(), QStringList());
        QVERIFY(!written().contains("OperatorsList"));

        services.onDialog = [](QDialog& dialog) {
            dynamic_cast<TorvQDOperatorsPropertyDlg&>(dialog).Operators.Add(TorvQDOperator());
            return int(QDialog::Accepted);
        };
        m_bench->taskMenu()->preferredEditAction()->trigger();
        QCOMPARE(builder()->OperatorsList().size(), 6);
        m_bench->form->commandHistory()->undo();
        QCOMPARE(builder()->OperatorsList(), QStringList());
        m_bench->form->commandHistory()->undo();
        QCOMPARE(builder()->OperatorsList(), oneOperator);
        m_bench->form->commandHistory()->redo();
        m_bench->form->cursor()->resetWidgetProperty(builder(), QStringLiteral("OperatorsList"));
        QCOMPARE(builder()->OperatorsList(), m_defaults);
        m_bench->core->propertyEditor()->setObject(nullptr);
    }

    void controlMayGoWhileItsOperatorsAreEdited() {
        orvtest::RecordedServices services;
        services.onDialog = [this](QDialog&) {
            delete builder();
            return int(QDialog::Accepted);
        };
        openForm(Workbench::formWith({}));
        m_bench->taskMenu()->preferredEditAction()->trigger();
        QVERIFY(!builder());
        QCOMPARE(services.errors, QStringList());
    }

private:
    void openForm(const QString& ui) { QVERIFY(m_bench->open(ui)); }
    [[nodiscard]] TorvQueryBuilder* builder() const { return m_bench->builder(); }
    void set(const char* name, const QVariant& value) const {
        m_bench->form->cursor()->setWidgetProperty(builder(), QLatin1String(name), value);
    }

    // What the form holds of the query builder: the properties and their values as they are
    // written, less the space between elements.
    [[nodiscard]] QMap<QString, QString> written() const {
        return orvtest::writtenProperties(m_bench->form->contents(),
                                          QStringLiteral("TorvQueryBuilder"));
    }

    [[nodiscard]] QString paletteXml() const {
        QDesignerWidgetBoxInterface* box = m_bench->core->widgetBox();
        for (int index = 0; index < box->categoryCount(); ++index) {
            if (box->category(index).name() == "ORV Software")
                return box->widget(index, 0).domXml();
        }
        return {};
    }

    // Enumerations are set by their numbers.
    [[nodiscard]] static bool isSame(const QVariant& shown, const QVariant& value) {
        if (value.metaType() == QMetaType::fromType<int>()) return shown.toInt() == value.toInt();
        return shown == value;
    }

    std::unique_ptr<Workbench> m_bench;
    QStringList m_defaults;
};

QTEST_MAIN(TestDesigner)
#include "tst_designer.moc"
