// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QString>
#include <QVariantMap>
#include <QVector>
#include <QWidget>

class DoubleTapGuard;
class SessionManager;

/// A stack of named views of which at most one is up; with none up it shows a quiet waiting page.
///
/// With a parent it covers it, follows its size, and comes on top whenever it is shown: so a question is laid over a
/// form. It starts hidden. Views that are not up get neither touch nor keys, nor does what the viewer covers get keys;
/// and the second half of a double tap does not reach the view that the first half has brought up.
/// Any view may be deleted at any moment by anybody: the viewer then does without it.
class FormViewer : public QWidget
{
    Q_OBJECT

public:
    /// @param session whose form project views come from; not owned, may be null.
    /// @param fullScreen whether show() of a viewer without a parent takes the whole screen.
    /// @param parent what the viewer covers, may be null.
    explicit FormViewer(SessionManager *session = nullptr, bool fullScreen = false, QWidget *parent = nullptr);
    ~FormViewer() override;

    /// @return the view of that name among this viewer's own ones (a viewer laid over it has its own), else null.
    [[nodiscard]] QWidget *getUi(const QString &name) const;

    /// Puts that view up, alone. A name that the viewer does not have changes nothing and is logged as a warning.
    void showWidget(const QString &name);

    /// Loads a ".ui" file with Qt's UI loader as the view @a name, in place of an earlier one of that name, and puts it
    /// up. Besides Qt's own widgets the file may use the classes MessageText and WaitIndicator. A broken or empty file
    /// gives the built-in message view, and a warning that tells the path, the reason and what to do.
    /// @param properties properties to set on the view, by name; those it does not have become dynamic ones.
    /// @return false when there is no such file: nothing is changed then.
    bool loadFromFile(const QString &path, const QString &name, const QVariantMap &properties);

    /// Takes the widget over as the view @a name, in place of an earlier one of that name, and puts it up.
    void addView(QWidget *view, const QString &name);
    /// Takes the widget down and forgets it, without deleting it; nothing happens if it is no view of this viewer.
    void removeView(QWidget *view);

    /// The name of the view that is up; empty while the waiting page is.
    [[nodiscard]] QString currentView() const;

    [[nodiscard]] SessionManager *session() const;

    void setVisible(bool visible) override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void childEvent(QChildEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool focusNextPrevChild(bool next) override;

private:
    struct View
    {
        QString name;
        QPointer<QWidget> widget;
    };

    [[nodiscard]] bool isView(const QObject *object) const;
    void setCurrent(QWidget *view);
    /// Lays the view out if the viewer can be seen, and puts it off if not: messages that nobody sees cost next to
    /// nothing.
    void layOut(QWidget *view);
    void updateWaitingPage();
    void takeFocus();
    [[nodiscard]] bool isCovered() const;

    QPointer<SessionManager> m_session;
    bool m_fullScreen;
    DoubleTapGuard *m_doubleTapGuard;
    QVector<View> m_views;
    QPointer<QWidget> m_current;
    QString m_currentName;
    QWidget *m_waitingPage = nullptr;
    QPointer<QWidget> m_focusBefore;
};
