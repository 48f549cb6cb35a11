#include "ctl/words/word.h"

const std::vector<Word>& words() {
  static const std::vector<Word> all = {
      {"ls", "List the parameters",
       "  ostrelctl ls\n"
       "  ostrelctl ls --long 'audio_*'\n"
       "  ostrelctl ls --instances 'rgb_*'\n",
       true, defineLs},
      {"get", "Print values",
       "  ostrelctl get mode\n"
       "  ostrelctl get 'position[1]' blanking\n"
       "  ostrelctl get 'audio_*'\n"
       "  ostrelctl get --with mode=720p/50 'position[1]'\n",
       true, defineGet},
      {"range", "Print what parameters take now",
       "  ostrelctl range 'position[1]'\n"
       "  ostrelctl range --with mode=720p/50 'position[1]'\n",
       true, defineRange},
      {"deps", "Print what parameters depend on",
       "  ostrelctl deps blanking\n"
       "  ostrelctl deps 'position[1]' mode\n",
       true, defineDeps},
  };
  return all;
}
