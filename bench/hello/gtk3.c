#include <gtk/gtk.h>

static void show(GtkApplication *application, gpointer unused) {
  (void)unused;
  GtkWidget *window = gtk_application_window_new(application);
  GtkWidget *column = gtk_box_new(GTK_ORIENTATION_VERTICAL, 4);
  GtkWidget *text = gtk_label_new(NULL);
  gtk_label_set_markup(GTK_LABEL(text), "<span size='36pt'>Hello window</span>");
  gtk_window_set_default_size(GTK_WINDOW(window), 480, 320);
  gtk_box_pack_start(GTK_BOX(column), text, TRUE, TRUE, 0);
  gtk_box_pack_start(GTK_BOX(column), gtk_button_new_with_label("OK"), FALSE, FALSE, 0);
  gtk_container_add(GTK_CONTAINER(window), column);
  gtk_widget_show_all(window);
}

int main(void) {
  GtkApplication *application = gtk_application_new("org.example.hello", G_APPLICATION_NON_UNIQUE);
  g_signal_connect(application, "activate", G_CALLBACK(show), NULL);
  return g_application_run(G_APPLICATION(application), 0, NULL);
}
