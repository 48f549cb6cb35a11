// A small control panel: what there is, why it is as it is, what a change would do, what happens.
//   client_qt PATTERN CONTROL NAME=VALUE...
#include <QtCore/QCoreApplication>
#include <utility>

#include "qt_calls.h"

class Panel : public QObject {
  Q_OBJECT
 public:
  explicit Panel(QStringList words) : words_(std::move(words)) {
    auto bus = QDBusConnection::sessionBus();
    const QString path = "/parameters";
    bus.connect(NAME, path, {}, "Changed", this, SLOT(onChanged(QDBusMessage)));
    bus.connect(NAME, path, {}, "LimitsChanged", this, SLOT(onLimitsChanged(uint, QStringList)));
    // The daemon may come after its clients, and it may be restarted.
    auto* watcher =
        new QDBusServiceWatcher(NAME, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, &Panel::onService);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, &Panel::onNoService);
    bus.interface()->isServiceRegistered(NAME) ? onService() : onNoService();
  }

 private:
  Q_SLOT void onChanged(const QDBusMessage& signal) {
    for (const QStringList& row : rowsOf(signal.arguments()[2])) {
      const QString serial = signal.arguments()[0].toString();
      say(QString("commit %1 changed %2: %3 -> %4").arg(serial, row[0], row[1], row[2]));
    }
  }
  Q_SLOT void onLimitsChanged(uint serial, const QStringList& names) {
    say(QString("commit %1 touched the limits of %2").arg(serial).arg(names.join(", ")));
  }

  void onNoService() { say("service: none"); }
  void onService() {
    const bool again = transaction_ != NOBODYS;
    say("service: there");
    second("WaitReady");  // until then, values may be empty
    // Transactions and watches end with the daemon, so each run of it is begun anew.
    transaction_ = begin();
    second("Watch", true, true);
    if (again) {
      show(transaction_);
      QCoreApplication::quit();
      return;
    }
    discover();
    show(COMMITTED);
    goWrong();
    tryOut();
    show(transaction_);
    // A commit cuts values, and passes over others, without an error: the signals tell.
    first("commit", transaction_);
  }
  static uint begin() { return second("Begin").value(0, NOBODYS).toUInt(); }

  void discover() {
    for (const QStringList& row : rowsOf(second("List", words_[1]).value(0))) {
      say(QString("%1 %2, line %4, level %5, indices: %3")
              .arg(row[0], row[1], row[2], row[3], row[4]));
    }
  }

  void show(uint id) {
    for (const QStringList& row : rowsOf(second("GetState", id, QStringList(words_[2])).value(0))) {
      const uint flags = row[1].toUInt();
      say(row[0] + " = " + ((flags & HAS_VALUE) != 0 ? row[2] : "(none)") +
          ((flags & WRITABLE) != 0 ? ", writable" : ", not writable"));
    }
    for (const QStringList& row : rowsOf(second("Explain", id, words_[2]).value(0))) {
      const QString because = row[2] == "0" ? "" : ", line " + row[2] + ": " + row[3];
      say("  " + row[0] + ": " + row[1] + because + row[4]);
    }
  }

  // Each error once.
  void goWrong() {
    QStringList names;
    while (names.size() < 400) names += "input_name[1]";
    second("List", "[");
    second("Explain", COMMITTED, "nonsense");
    second("Preview", NOBODYS);
    first("commit", NOBODYS);
    first("set", transaction_, "input_select[1]", "radio");
    first("set", transaction_, names[0], QString(100000, 'x'));
    second("GetState", transaction_, names);
    // Nothing of this is to be committed.
    first("end", transaction_);
    transaction_ = begin();
  }

  // What if? Only this transaction sees what is staged in it.
  void tryOut() {
    for (const QString& wish : words_.mid(3)) {
      first("set", transaction_, wish.section('=', 0, 0), wish.section('=', 1));
    }
    const QVariantList preview = second("Preview", transaction_);
    for (const QStringList& row : rowsOf(preview.value(0))) {
      const QString line = "would change %1: %2 -> %3, because of %4";
      say(line.arg(row[0], row[1], row[2], row[3]));
    }
    for (const QStringList& row : rowsOf(preview.value(1))) {
      say("would refuse " + row[0] + ": " + row[1]);
    }
  }

  QStringList words_;
  uint transaction_ = NOBODYS;
};

int main(int count, char** words) {
  const QCoreApplication application(count, words);
  const Panel panel(QCoreApplication::arguments());
  return QCoreApplication::exec();
}

#include "client.moc"
