#include <projectdb/project_db.h>

int main() {
  projectdb::KelProjectDatabase database;
  const bool created = database.CreateNewProjectDatabase("consumer");
  return created && database.GetProjectName() == "consumer" ? 0 : 1;
}
