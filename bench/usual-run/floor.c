/* What any program costs: the measure for the agent's usual run. */
int main(void) {
  return 0;
}
