// SPDX-License-Identifier: MIT
#pragma once

#include "WindowDesk.h"
#include "documents/RecoveryFolder.h"
#include "window/DocumentController.h"

#include <QDir>

namespace apptest {

inline QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

/// A window whose queries are documents in a folder of their own, and the person at its dialogs. A
/// base of test classes, as WindowDesk is.
class DocumentDesk : protected WindowDesk {
protected:
    void begin();
    void end();

    [[nodiscard]] orvquery::DocumentController& documents() const { return m_window->documents(); }
    [[nodiscard]] QString path(const char* name) const {
        return m_files->filePath(QLatin1String(name));
    }
    [[nodiscard]] QString title() const { return m_window->windowTitle(); }
    [[nodiscard]] QString statement() const { return builder().GetSQLStatment(); }
    [[nodiscard]] int boxes() const { return builder().ListOfTables->TablesCount(); }
    /// The person at the next dialogs, one after another.
    void answer(const char* button);
    void answerFile(const QString& path);
    bool saveAs(const QString& path);
    void openNew(const QString& document = {}, const QString& database = {});
    [[nodiscard]] static QStringList leftFiles();

    std::unique_ptr<QTemporaryDir> m_files;
    std::unique_ptr<orvtest::RecordedServices> m_services;
    QList<std::function<int(QDialog&)>> m_answers;
    QStringList m_questions;
};

inline void DocumentDesk::begin() {
    m_files = std::make_unique<QTemporaryDir>();
    WindowDesk::begin();
    m_services = std::make_unique<orvtest::RecordedServices>();
    m_answers.clear();
    m_questions.clear();
    m_services->onDialog = [this](QDialog& dialog) {
        if (auto* question = dialog.findChild<QLabel*>(QStringLiteral("question"))) {
            m_questions += question->text();
        }
        return m_answers.isEmpty() ? int(QDialog::Rejected) : m_answers.takeFirst()(dialog);
    };
}

inline void DocumentDesk::end() {
    QCOMPARE(m_services->errors, QStringList());
    QVERIFY(m_answers.isEmpty());
    m_services.reset();
    WindowDesk::end();
}

inline void DocumentDesk::answer(const char* button) {
    m_answers += [button](QDialog& dialog) {
        dialog.findChild<QPushButton*>(QLatin1String(button))->click();
        return dialog.result();
    };
}

inline void DocumentDesk::answerFile(const QString& path) {
    m_answers += [path](QDialog& dialog) {
        auto* files = qobject_cast<QFileDialog*>(&dialog);
        if (files == nullptr) return int(QDialog::Rejected);
        files->setDirectory(QFileInfo(path).absolutePath());
        files->selectFile(QFileInfo(path).fileName());
        return int(QDialog::Accepted);
    };
}

inline bool DocumentDesk::saveAs(const QString& path) {
    answerFile(path);
    return documents().saveAs();
}

inline void DocumentDesk::openNew(const QString& document, const QString& database) {
    orvquery::Options options;
    if (!document.isEmpty()) options.document = document;
    if (!database.isEmpty()) options.database = database;
    m_window.reset();
    open(options);
}

inline QStringList DocumentDesk::leftFiles() {
    return QDir(orvquery::RecoveryFolder().path()).entryList(QDir::Files | QDir::Hidden);
}

}  // namespace apptest
