#include <gtk/gtk.h>

static void show(GtkApplication *application, gpointer unused) {
  (void)unused;
  GtkWidget *window = gtk_application_window_new(application);
  GtkWidget *column = gtk_box_new(GTK_ORIENTATION_VERTICAL, 4);
  GtkWidget *text = gtk_label_new(NULL);
  gtk_label_set_markup(GTK_LABEL(text), "<span size='36pt'>Hello window</span>");
  gtk_window_set_default_size(GTK_WINDOW(window), 480, 320);
  gtk_widget_set_vexpand(text, TRUE);
  gtk_box_append(GTK_BOX(column), text);
  gtk_box_append(GTK_BOX(column), gtk_button_new_with_label("OK"));
  gtk_window_set_child(GTK_WINDOW(window), column);
  gtk_window_present(GTK_WINDOW(window));
}

int main(void) {
  GtkApplication *application = gtk_application_new("org.example.hello", G_APPLICATION_NON_UNIQUE);
  g_signal_connect(application, "activate", G_CALLBACK(show), NULL);
  return g_application_run(G_APPLICATION(application), 0, NULL);
}
