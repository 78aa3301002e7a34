#include <QtWidgets>

int main(int count, char **arguments) {
  QApplication application(count, arguments);
  QDialog window;
  window.resize(480, 320);
  auto *const column = new QVBoxLayout(&window);
  auto *const text = new QLabel("Hello window");
  QFont font = text->font();
  font.setPixelSize(48);
  text->setFont(font);
  column->addWidget(text);
  column->addWidget(new QPushButton("OK"));
  window.show();
  return application.exec();
}
