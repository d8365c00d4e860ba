// A Qt 6 window for the desktop tests: a rich text editor holding known text above a password
// line edit holding the secret given as the first argument.
#include <QApplication>
#include <QLineEdit>
#include <QTextEdit>
#include <QVBoxLayout>
#include <QWidget>

int main(int argc, char** argv) {
    QApplication application{argc, argv};
    QString secret = argc > 1 ? QString::fromUtf8(argv[1]) : QStringLiteral("opensesame");
    QWidget window;
    window.setWindowTitle(QStringLiteral("Lectorbell Qt fixture"));
    auto* layout = new QVBoxLayout{&window};
    auto* editor = new QTextEdit{&window};
    editor->setPlainText(QStringLiteral(
        "Winter roads close early in the high passes. Drivers carry chains and blankets.\n"
        "Spring brings the melt and the first green shoots on the valley floor."));
    layout->addWidget(editor);
    auto* password = new QLineEdit{&window};
    password->setEchoMode(QLineEdit::Password);
    password->setText(secret);
    layout->addWidget(password);
    window.resize(700, 300);
    window.move(0, 0);
    window.show();
    return application.exec();
}
