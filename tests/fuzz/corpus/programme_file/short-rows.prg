<Configuration><CONDITIONS><Condition NOM="MASTER" SORTIE="3" JOUR="11"/><Condition NOM="a" JOURFIN="11" HEUREFIN="-3"/><Condition NOM="b" JOUR="12" SECONDE="256"/></CONDITIONS></Configuration>
