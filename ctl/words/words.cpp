#include "ctl/words/word.h"

const std::vector<Word>& words() {
  static const std::vector<Word> all = {
      {"ls", "List the parameters",
       "  ostrelctl ls\n"
       "  ostrelctl ls --long 'audio_*'\n"
       "  ostrelctl ls --instances 'rgb_*'\n",
       true, true, defineLs},
      {"get", "Print values",
       "  ostrelctl get mode\n"
       "  ostrelctl get 'position[1]' blanking\n"
       "  ostrelctl get 'audio_*'\n"
       "  ostrelctl get --with mode=720p/50 'position[1]'\n",
       true, true, defineGet},
      {"set", "Set values in one commit, and tell what was cut",
       "  ostrelctl set mode=720p/50 'position[1]=300'\n"
       "  ostrelctl set black_level[1]=-20\n"
       "  ostrelctl set --status temperature=61\n"
       "  ostrelctl set --confirm 60 mode=720p/50\n"
       "  ostrelctl set --strict 'position[1]=300' || echo 'not as asked'\n",
       true, true, defineSet},
      {"confirm", "Let what set --confirm has stored stay",
       "  ostrelctl confirm\n"
       "  ostrelctl confirm 4711\n",
       false, true, defineConfirm},
      {"reset", "Set parameters to their defaults",
       "  ostrelctl reset mode\n"
       "  ostrelctl reset 'position*'\n",
       true, true, defineReset},
      {"range", "Print what parameters take now",
       "  ostrelctl range 'position[1]'\n"
       "  ostrelctl range --with mode=720p/50 'position[1]'\n",
       true, true, defineRange},
      {"deps", "Print what parameters depend on",
       "  ostrelctl deps blanking\n"
       "  ostrelctl deps 'position[1]' mode\n",
       true, true, defineDeps},
      {"try", "Tell what a commit would change, and store nothing",
       "  ostrelctl try mode=720p/50\n", false, true, defineTry},
      {"why", "Tell why a parameter is as it is, and how to change that",
       "  ostrelctl why blanking\n"
       "  ostrelctl why 'position[1]=1500'\n",
       false, true, defineWhy},
      {"transactions", "List the open transactions",
       "  ostrelctl transactions\n"
       "  ostrelctl transactions --end 7\n",
       false, true, defineTransactions},
      {"log", "Print the last commits",
       "  ostrelctl log\n"
       "  ostrelctl log -n 100\n",
       false, true, defineLog},
      {"undo", "Take back what a commit has changed, by another commit",
       "  ostrelctl undo 12\n"
       "  ostrelctl undo --dry-run 12\n",
       false, true, defineUndo},
      {"watch", "Print changes as they are committed",
       "  ostrelctl watch\n"
       "  ostrelctl watch --time --limits 'position*'\n",
       false, true, defineWatch},
      {"up", "Bring the device up: defaults, and what a file holds",
       "  ostrelctl up\n"
       "  ostrelctl up --from /var/lib/device/values\n"
       "  ostrelctl up --forgiving --from /var/lib/device/values\n",
       false, true, defineUp},
      {"upgrade", "Replace the definition text of a running device, or go back",
       "  ostrelctl upgrade new.ostrel\n"
       "  ostrelctl upgrade --yes --instance studio new.ostrel\n",
       false, false, defineUpgrade},
      {"save", "Write values to a file",
       "  ostrelctl save values\n"
       "  ostrelctl save | grep '^audio_'\n",
       true, true, defineSave},
      {"health", "Tell in one line whether the service is well",
       "  ostrelctl health\n"
       "  ostrelctl health --max-latency 0.5 --max-memory 200\n",
       false, true, defineHealth},
      {"metrics", "Print figures of the service for a monitoring system", "  ostrelctl metrics\n",
       false, false, defineMetrics},
      {"keep", "Write values to a file whenever they have changed",
       "  ostrelctl keep /var/lib/device/values\n"
       "  ostrelctl keep --every 60 values\n",
       false, true, defineKeep},
      {"restore", "Set the values of a file, in the order in which they follow each other",
       "  ostrelctl restore --dry-run values\n"
       "  ostrelctl restore values\n",
       false, true, defineRestore},
      {"diff", "Compare a file of values with the stored ones, or with another",
       "  ostrelctl diff values\n"
       "  ostrelctl diff values values.old\n",
       false, true, defineDiff},
  };
  return all;
}
