modern modern.fnt
bold bold.fnt
roman roman.fnt
romanb romanb.fnt
italic italic.fnt
script script.fnt
greek greek.fnt
