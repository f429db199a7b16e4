// The installation's page and summary in the real window, with real steps: the shipped one with a private
// print service, and shell scripts that fail, hang or can't be run.

#include "Installer/InstallationPane.h"
#include "Installer/InstallerWindow.h"
#include "Installer/IntroductionPane.h"
#include "Installer/SummaryPane.h"
#include "support/Fixtures.h"

#include <QtWidgets>

#include <optional>
#include <tuple>

namespace {

const QString shipped = QStringLiteral("exec " QUAZEL_SOURCE_DIR "/steps/50-print-queue \"$1\"");
const QString queue = u"Tovik-KV260-Ethernet-Printer-IP=010.0.0.08"_s;
const QByteArray valid = "KV260 010.0.0.08";
const QString isSetUp = u"The print queue is "_s + queue + u'.';
const QString invalid = u"KV.txt is not valid: it must have a model and an IPv4 address."_s;

/// `steps` are a name and commands, in turn; without commands, the file is not executable.
const struct {
    QStringList steps;
    QByteArray handOff;
    bool succeeds;
    QString message;
} rows[]{
    {{u"50"_s, shipped}, valid, true, isSetUp},
    {{u"again"_s, u"lpadmin() { exit 9; }; export -f lpadmin\n"_s + shipped}, valid, true, isSetUp},
    {{u"driver-of-a-longer-name"_s, shipped}, "KV460 10.0.0.46", false, u"No driver for the Tovik KV460 "_s},
    {{u"range"_s, shipped}, "KV260 10.0.0.256", false, invalid},
    {{u"model"_s, shipped}, "KV2600 10.0.0.8", false, invalid},
    {{u"spaces"_s, shipped}, "KV260  10.0.0.8", false, invalid},
    {{u"zero-byte"_s, shipped}, QByteArray("KV260 10.0.0.8\0", 15), false, invalid},
    {{u"line-end"_s, shipped}, "KV260 10.0.0.8\n", false, invalid},
    {{u"b"_s, u"echo 2"_s, u"C_-"_s, u"echo 1; echo"_s, u"a.sh"_s, u"exit 9"_s}, valid, true, u"1\n2"_s},
    {{u"1"_s, u"echo 1; printf '2\n3' >&2; exit 5"_s, u"2"_s, u"touch $0.ran"_s}, valid, false, u"3"_s},
    {{u"killed"_s, u"kill -9 $$"_s}, valid, false, u"/killed was ended by the signal 9"_s},
    {{u"not-executable"_s, {}}, valid, false, u"/not-executable can't be run: "_s},
    {{u"output-stays-open"_s, u"sleep 98.7 &"_s}, valid, true, {}},
    // Signals up to 28, as the C library doesn't let a program reset its own; and the terminal's number.
    {{u"signals-and-terminal"_s,
      uR"(cat; exec awk '
          /^Sig(Blk|Ign)/ { printf "%s ", substr($2, 10) }
          FILENAME ~ /stat$/ { print $7 }' /proc/self/status /proc/self/stat)"_s},
     valid,
     true,
     u"0000000 0000000 0"_s},
};

}  // namespace

class TestInstallation : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() {
        QVERIFY(QDir().mkpath(cups_ + u"/share/model"_s));
        for (const char* const model : {"KV260", "KV2600", "KV4600"}) {
            QByteArray ppd = contentOf(QStringLiteral(QUAZEL_SOURCE_DIR "/tools/kv-series.ppd.in"));
            writeFile(cups_ + u"/share/model/"_s + QString::fromLatin1(model), ppd.replace("@MODEL@", model));
        }
        qputenv("CUPS_SERVER", (cups_ + u"/cups.sock"_s).toUtf8());
        service_.emplace(QStringLiteral(QUAZEL_SOURCE_DIR "/tools/private-cupsd ") + cups_);
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(cups_ + u"/cups.sock"_s), 40'000);
        (void)std::signal(SIGTERM, SIG_IGN);  // Steps must not inherit it.
    }

    void runsSteps() {
        for (const auto& [steps, handOff, succeeds, message] : rows) {
            const QByteArray name = steps.constFirst().toUtf8();
            open(steps, handOff);
            QVERIFY2(!button("next").isEnabled() && !button("back").isEnabled(), name);
            QTRY_VERIFY2_WITH_TIMEOUT(button("next").isEnabled() && button("back").isEnabled(), name, 40'000);
            QVERIFY2(page_->message().contains(message), qPrintable(page_->message()));
            QVERIFY2(label("status").endsWith(page_->message()), name);
            QVERIFY2(button("tryAgain").isVisible() == !succeeds, name);
            button("next").click();
            const QString state = succeeds ? u"is ready to print"_s : u"but is not set up"_s;
            QVERIFY2(label("summary").contains(state) && label("reason") == page_->message(), name);
            QVERIFY2(!QFile::exists(steps_ + u"/2.ran"_s), name);
        }
        const QString check =
            u"! pgrep -f '^sleep 98.7' && test \"$(lpstat -v)\" = 'device for %1: socket://10.0.0.8'"_s.arg(
                queue);
        QCOMPARE(QProcess::execute(u"sh"_s, {u"-c"_s, check}), 0);
    }

    void tellsTheTruthWithoutAQueue() {
        open({u"1"_s, u"[ ! -e \"$1\" ]"_s, u"50"_s, shipped}, {});
        QTRY_VERIFY(button("next").isEnabled());
        QVERIFY(label("status").endsWith(u"nothing to set up."_s));
        button("next").click();
        QVERIFY(label("summary").contains(u"No network printer was chosen"_s));

        open({u"1"_s, u"touch $0.ran"_s}, "");  // As after a write to a full disk.
        QTRY_VERIFY(label("status").contains(u"couldn't be updated"_s));
        QVERIFY(!QFile::exists(steps_ + u"/1.ran"_s));
        button("next").click();
        QVERIFY(label("summary").contains(u"couldn't be saved"_s));

        writeFile(home_.selectionFile(), valid);
        for (const auto& [problem, expected] :
             {std::pair{QString(), u"but is not set up"_s},
              {u"Full."_s, u"couldn't be saved, so it is not set up.|Full."_s}}) {
            SummaryPane summary(nullptr, HandOff({&chosen_}, problem));
            summary.didEnterPane(InstallerDirectionForward);
            const auto* const result = summary.contentWidget()->findChild<QLabel*>(u"summary"_s);
            const QString text = result->text() + u'|' + result->accessibleDescription();
            QVERIFY2(text.contains(expected) && !text.contains(u"ready"_s), qPrintable(text));
        }

        // The focus follows while another window is active, such as a password dialog.
        open({u"1"_s, u"sleep 1; echo >>$0.runs; test $(wc -l <$0.runs) = 2"_s}, "KV260 10.0.0.8");
        QWidget other;
        other.show();
        other.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&other) && !button("next").isEnabled());
        QTRY_VERIFY(button("tryAgain").isVisible());
        QCOMPARE(window_->focusWidget(), &button("tryAgain"));
        QVERIFY(button("tryAgain").accessibleDescription().startsWith(u"The printer is not set up."_s));
        button("tryAgain").click();
        QTRY_VERIFY(button("next").isEnabled());
        QVERIFY(page_->hasSucceeded());
        button("next").click();
        button("back").click();
        QVERIFY(button("next").isEnabled() && label("status").startsWith(u"The printer is set up"_s));
    }

    /// Closes the window while a step and its child run.
    void closingEndsTheStep() {
        for (const auto& [trap, shortest, longest] : {std::tuple{"-", 0, 3000}, {"''", 5000, 7000}}) {
            open({u"1"_s,
                  u"trap %1 TERM; sleep 99 & echo $$ >$0.pid; wait; sleep 99"_s.arg(QLatin1String(trap))},
                 "KV260 10.0.0.8");
            QTRY_VERIFY(contentOf(steps_ + u"/1.pid"_s).endsWith('\n'));
            const int group = contentOf(steps_ + u"/1.pid"_s).toInt();
            QElapsedTimer clock;
            clock.start();
            window_.reset();
            QVERIFY2(clock.elapsed() >= shortest && clock.elapsed() < longest, trap);
            QTRY_VERIFY2(::kill(-group, 0) != 0, trap);
        }
    }

  private:
    /// Opens the window at the page. An empty `handOff` is an empty file, a null one no file.
    void open(const QStringList& steps, const QByteArray& handOff) {
        QDir(steps_).removeRecursively();
        QDir().mkpath(steps_);
        for (qsizetype index = 0; index < steps.size(); index += 2) {
            const QString path = steps_ + u'/' + steps[index];
            writeFile(path, "#!/bin/bash\n" + steps[index + 1].toUtf8());
            QFile::setPermissions(
                path, QFile::ReadOwner | (steps[index + 1].isNull() ? QFile::ReadOwner : QFile::ExeOwner));
        }
        QFile::remove(home_.selectionFile());
        if (!handOff.isNull()) {
            writeFile(home_.selectionFile(), handOff);
        }
        const HandOff chosen(
            handOff.isNull() ? std::vector<InstallerPane*>() : std::vector<InstallerPane*>{&chosen_}, {});
        page_ = new InstallationPane(StepRunner::stepsIn(steps_), chosen);
        window_.emplace(
            std::vector<InstallerPane*>{new IntroductionPane({}), page_, new SummaryPane(page_, chosen)});
        window_->show();
        button("next").click();
    }

    QPushButton& button(const char* name) { return *window_->findChild<QPushButton*>(QLatin1String(name)); }
    QString label(const char* name) { return window_->findChild<QLabel*>(QLatin1String(name))->text(); }

    struct : InstallerPane {
        [[nodiscard]] QString title() const override { return {}; }
        [[nodiscard]] bool hasChoice() const override { return true; }
    } chosen_;
    TemporaryHome home_;
    const QString cups_ = home_.path() + u"/cups"_s;
    const QString steps_ = home_.path() + u"/steps"_s;
    std::optional<SpawnedProgram> service_;
    InstallationPane* page_ = nullptr;
    std::optional<InstallerWindow> window_;
};

QUAZEL_TEST_MAIN(TestInstallation, QApplication)

#include "test_Installation.moc"
